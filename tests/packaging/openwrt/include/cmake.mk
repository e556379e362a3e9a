define Build/Compile
	cmake -S $(SOURCE) -B $(PKG_BUILD_DIR) -G Ninja -DCMAKE_TOOLCHAIN_FILE=$(SOURCE)/cmake/toolchains/mips.cmake \
		-DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_INSTALL_LIBDIR=lib $(CMAKE_OPTIONS)
	cmake --build $(PKG_BUILD_DIR)
	DESTDIR=$(PKG_INSTALL_DIR) cmake --install $(PKG_BUILD_DIR)
endef
