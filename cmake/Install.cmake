include(CMakePackageConfigHelpers)

install(FILES ${TARN_INSTALLED_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarn COMPONENT library)
install(TARGETS tarn tarn_static EXPORT tarnTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)

# An installed tree may be moved: pkg-config finds the rest from where the file stands.
file(RELATIVE_PATH TARN_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(packaging/libtarn.pc.in libtarn.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/libtarn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT library)

configure_package_config_file(packaging/tarnConfig.cmake.in tarnConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tarn)
write_basic_package_version_file(tarnConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tarnConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/tarnConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tarn COMPONENT library)

if(TARN_BUILD_KIT)
    install(FILES host/kor_iil_service.h mock/kor_iil_mock.h mock/kor_iil_mock.hpp
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarn COMPONENT kit)
    install(FILES simulator/control.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarn RENAME tarn_gateway_control.h COMPONENT kit)
    install(TARGETS koriil koriil_static tarn_mock EXPORT tarnTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kit
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kit)
    install(TARGETS tarn-gateway tarnctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kit)
    install(FILES contract/tarn.json contract/qtn_rpc_proxy.json contract/qtn_mirror.json contract/contract.schema.json
        contract/README.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/contract COMPONENT kit)
    install(FILES tarnctl/tarnctl.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn COMPONENT kit)
    install(DIRECTORY simulator/scenarios DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn COMPONENT kit)
    configure_file(packaging/libkoriil.pc.in libkoriil.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/libkoriil.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT kit)
endif()

install(EXPORT tarnTargets NAMESPACE tarn:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tarn COMPONENT library)
