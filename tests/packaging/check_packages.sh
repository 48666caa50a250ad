#!/usr/bin/env bash
# check_packages.sh CPACK_CONFIG SHARE_FOLDER PROJECT_VERSION
# Builds both packages and compares what they hold, file by file, with what they should.
set -euo pipefail
config=${1:?CPackConfig.cmake}
share=${2:?folder}
version=${3:?version}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cpack --config "$config" -B "$work" >"$work/log" 2>&1 || {
    cat "$work/log"
    exit 1
}
deb=$(echo "$work"/tremorledger_"$version"_*.deb)
archive=$(echo "$work/tremorledger-$version"-linux-*.tar.gz)

expected_deb() {
    printf '%s\n' bin/tremorledger lib/tremorledger/TremorLedger \
        share/applications/tremorledger.desktop \
        share/doc/tremorledger/changelog.gz share/doc/tremorledger/copyright \
        share/icons/hicolor/{48x48,64x64,128x128,256x256,512x512}/apps/tremorledger.png \
        share/icons/hicolor/scalable/apps/tremorledger.svg \
        share/man/man1/tremorledger.1.gz \
        share/metainfo/org.tremorledger.tremorledger.metainfo.xml
    (cd "$share" && find . -type f -printf 'share/tremorledger/%P\n')
}
dpkg-deb --fsys-tarfile "$deb" | tar t | grep -v '/$' | sed 's|^\./usr/||' | sort >"$work/deb"
diff <(expected_deb | sort) "$work/deb"

expected_archive() {
    printf '%s\n' TremorLedger copyright
    (cd "$share" && find . -type f -printf '%P\n')
}
tar tzf "$archive" | grep -v '/$' | sed 's|^[^/]*/||' | sort >"$work/archive"
diff <(expected_archive | sort) "$work/archive"

depends=$(dpkg-deb --field "$deb" Depends)
for package in libqt6webenginewidgets6 libqt6webenginecore6-bin libsqlite3-0 ca-certificates; do
    case ", $depends" in
    *", $package"*) ;;
    *)
        echo "The .deb does not depend on $package: $depends"
        exit 1
        ;;
    esac
done
dpkg-deb --fsys-tarfile "$deb" | tar xO ./usr/share/doc/tremorledger/copyright >"$work/copyright"
for package in leaflet @tmcw/togeojson fflate world-atlas; do
    grep -q "^$package [0-9]" "$work/copyright" || {
        echo "No notice of $package in the copyright file"
        exit 1
    }
done
