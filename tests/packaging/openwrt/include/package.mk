PKG_INSTALL_DIR:=$(PKG_BUILD_DIR)/ipkg-install

# What a package has to say of itself.
required:=PKG_NAME PKG_VERSION PKG_RELEASE PKG_SOURCE PKG_SOURCE_URL PKG_HASH PKG_MAINTAINER PKG_LICENSE PKG_LICENSE_FILES
$(foreach name,$(required),$(if $($(name)),,$(error $(name) is missing)))
$(if $(wildcard $(SOURCE)/$(PKG_LICENSE_FILES)),,$(error there is no file $(PKG_LICENSE_FILES)))

define BuildPackage
$(eval $(call Package/$(1)))
$(foreach name,SECTION CATEGORY TITLE ABI_VERSION,$(if $($(name)),,$(error $(name) of $(1) is missing)))
$(if $(Package/$(1)/description),,$(error $(1) has no description))

version:
	@echo $(PKG_VERSION)

compile:
	$(Build/Compile)

install: compile
	$(call Package/$(1)/install,$(WORK)/root)
endef
