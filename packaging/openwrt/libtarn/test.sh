#!/bin/sh
# SPDX-License-Identifier: MIT
# Tries the installed package: test.sh NAME VERSION
[ "$1" = libtarn ] || exit 0

library=$IPKG_INSTROOT/usr/lib/libtarn.so
[ "$(readlink "$library.1")" = "libtarn.so.$2" ] || { echo "$library.1 does not lead to version $2"; exit 1; }
for name in TarnGetRadioNum tarn_qcsapi_init tarn_qtn_mirror_get_mirror_status tarnSubscribeEvent
do
	grep -q "$name" "$library.$2" || { echo "$name is missing in $library.$2"; exit 1; }
done
