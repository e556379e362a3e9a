# Two products, two components: what `library` installs is complete without `kit`.
include(CMakePackageConfigHelpers)

# An installed tree may be moved: pkg-config finds the rest from where the file is.
file(RELATIVE_PATH TARN_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
function(tarn_install_pkg_config name component)
    configure_file(packaging/${name}.pc.in ${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/tarn)

install(FILES ${TARN_INSTALLED_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarn COMPONENT library)
install(TARGETS tarn tarn_static EXPORT tarnTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
install(EXPORT tarnTargets NAMESPACE tarn:: DESTINATION ${package_directory} COMPONENT library)
tarn_install_pkg_config(libtarn library)

configure_package_config_file(packaging/tarnConfig.cmake.in tarnConfig.cmake INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file(tarnConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tarnConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/tarnConfigVersion.cmake
    DESTINATION ${package_directory} COMPONENT library)

if(TARN_BUILD_KIT)
    install(FILES kit/host/kor_iil_service.h kit/mock/kor_iil_mock.h kit/mock/kor_iil_mock.hpp
        kit/simulator/tarn_gateway_control.h kit/simulator/tarn_gateway_order.hpp kit/simulator/tarn_gateway.hpp
        ${PROJECT_BINARY_DIR}/include/tarn_gateway_records.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarn COMPONENT kit)
    # Two sets of targets: a distribution has a package of each, and either may be installed without the other.
    install(TARGETS koriil koriil_static EXPORT tarnKoriilTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kit
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kit)
    install(TARGETS tarn_mock EXPORT tarnMockTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kit)
    install(EXPORT tarnKoriilTargets FILE tarn-koriil.cmake NAMESPACE tarn:: DESTINATION ${package_directory} COMPONENT kit)
    install(EXPORT tarnMockTargets FILE tarn-mock.cmake NAMESPACE tarn:: DESTINATION ${package_directory} COMPONENT kit)
    tarn_install_pkg_config(libkoriil kit)
    tarn_install_pkg_config(libtarn_mock kit)

    install(TARGETS tarn-gateway tarnctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kit)
    if(TARGET tarn-bridge) # it needs libmosquitto for the target
        install(TARGETS tarn-bridge tarn-fleet RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kit)
        # What an operator begins with.
        install(DIRECTORY packaging/mosquitto packaging/rabbitmq DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/broker
            USE_SOURCE_PERMISSIONS COMPONENT kit)
        install(PROGRAMS packaging/make-test-authority DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/broker COMPONENT kit)
    endif()
    install(FILES kit/contract/tarn.json kit/contract/qtn_rpc_proxy.json kit/contract/qtn_mirror.json
        kit/contract/contract.schema.json kit/contract/README.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/contract COMPONENT kit)
    install(FILES kit/layout/tarn-gateway.json kit/layout/layout.schema.json kit/layout/README.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/layout COMPONENT kit)
    # Where each of the shells looks for completion: bash and fish by the program's name.
    foreach(program tarnctl tarn-fleet)
        install(FILES kit/tarnctl/completion/tarnctl.bash RENAME ${program}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT kit)
        install(FILES kit/tarnctl/completion/tarnctl.fish RENAME ${program}.fish
            DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT kit)
    endforeach()
    install(FILES kit/tarnctl/completion/_tarnctl DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT kit)
    install(FILES kit/tarnctl/tarnctl.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn COMPONENT kit)
    install(FILES kit/simulator/scenario.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn COMPONENT kit)
    install(DIRECTORY kit/simulator/scenarios DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn COMPONENT kit)
endif()
