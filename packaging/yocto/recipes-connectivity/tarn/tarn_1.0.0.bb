# SPDX-License-Identifier: MIT
SUMMARY = "Client library of a gateway's Wi-Fi services"
DESCRIPTION = "One plain C function for each command of the Wi-Fi services of a gateway. The platform's IPC library \
carries the messages; the program that is linked with this library brings it."
SECTION = "libs"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=798924e9f07f7644daa621ec1cdd285c"

# A release adds the archive's sha256sum.
SRC_URI = "https://tarn.invalid/releases/${BP}.tar.gz \
           file://run-ptest"

inherit cmake pkgconfig ptest

EXTRA_OECMAKE = "-DTARN_BUILD_KIT=OFF"

# A caller in C over a platform of its own.
do_compile_ptest() {
    ${CC} ${CFLAGS} ${LDFLAGS} -o ${B}/caller \
        -I${S}/src/frame -I${S}/src/tarn_api -I${S}/src/tarn_qtn_monitor_api \
        ${S}/tests/consumer/caller.c ${S}/tests/consumer/platform.c -L${B}/src -ltarn
}

do_install_ptest() {
    install -d ${D}${PTEST_PATH}
    install -m 0755 ${B}/caller ${D}${PTEST_PATH}
}
