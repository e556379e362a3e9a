# Stand-in for OpenWrt's build system: as much of it as the feed's entry uses.
INCLUDE_DIR:=$(TOPDIR)/include
BUILD_DIR:=$(WORK)/build
INSTALL_DIR:=install -d -m 0755
CP:=cp -fpR
