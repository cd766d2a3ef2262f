# libxml2, expat and OpenSSL for the Windows targets: static, built from the distribution's own source packages,
# kept by version and by target. Sourced by tools/windows.sh after ground.sh.

# Source lists apart from the machine's own, which need not name any; refreshed once a day.
source_apt() {
    local home=$store/apt
    if [ ! -e "$home/fresh" ] || [ -n "$(find "$home/fresh" -mtime +0)" ]; then
        mkdir -p "$home/lists/partial" "$home/cache/archives/partial"
        echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(archive) $suite main" \
            > "$home/sources.list"
        apt-get "${source_options[@]}" update -qq
        touch "$home/fresh"
    fi
}
source_options=(
    -o "Dir::Etc::sourcelist=$store/apt/sources.list" -o Dir::Etc::sourceparts=-
    -o "Dir::State::lists=$store/apt/lists" -o "Dir::Cache=$store/apt/cache" -o APT::Sandbox::User=root
)

source_version() {
    apt-cache "${source_options[@]}" showsrc --only-source "$1" | sed -n 's/^Version: //p' | sort -V | tail -n 1
}

unpack_source() { # package version -> folder holding the patched source
    local at=$store/source/$1-${2//[^A-Za-z0-9.+-]/_}
    if [ ! -e "$at/unpacked" ]; then
        rm -rf "$at" && mkdir -p "$at"
        (cd "$at" && apt-get "${source_options[@]}" source -qq "$1=$2" >&2) && touch "$at/unpacked"
    fi
    find "$at" -mindepth 1 -maxdepth 1 -type d
}

build_libxml2() { # source target prefix
    cmake -S "$1" -B "$3.build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$3" \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/windows-$2.cmake" -DBUILD_SHARED_LIBS=OFF \
        -DLIBXML2_WITH_THREADS=ON -DLIBXML2_WITH_TREE=ON -DLIBXML2_WITH_XPATH=ON -DLIBXML2_WITH_SAX1=ON \
        -DLIBXML2_WITH_PUSH=ON -DLIBXML2_WITH_OUTPUT=ON -DLIBXML2_WITH_READER=OFF -DLIBXML2_WITH_WRITER=OFF \
        -DLIBXML2_WITH_C14N=OFF -DLIBXML2_WITH_CATALOG=OFF -DLIBXML2_WITH_DEBUG=OFF -DLIBXML2_WITH_DOCB=OFF \
        -DLIBXML2_WITH_FTP=OFF -DLIBXML2_WITH_HTML=OFF -DLIBXML2_WITH_HTTP=OFF -DLIBXML2_WITH_ICONV=OFF \
        -DLIBXML2_WITH_LEGACY=OFF -DLIBXML2_WITH_LZMA=OFF -DLIBXML2_WITH_MODULES=OFF \
        -DLIBXML2_WITH_PATTERN=OFF -DLIBXML2_WITH_PROGRAMS=OFF -DLIBXML2_WITH_PYTHON=OFF \
        -DLIBXML2_WITH_REGEXPS=OFF -DLIBXML2_WITH_SCHEMAS=OFF -DLIBXML2_WITH_SCHEMATRON=OFF \
        -DLIBXML2_WITH_TESTS=OFF -DLIBXML2_WITH_VALID=OFF -DLIBXML2_WITH_XINCLUDE=OFF -DLIBXML2_WITH_XPTR=OFF \
        -DLIBXML2_WITH_ZLIB=OFF -DLIBXML2_WITH_ICU=OFF -DLIBXML2_WITH_ISO8859X=ON
    cmake --build "$3.build" --target install
}

# Its CMake files define XML_DTD without a value, which this version's source compares with 1.
build_expat() { # source target prefix
    cmake -S "$1/expat" -B "$3.build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$3" \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/windows-$2.cmake" -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF \
        -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF \
        -DEXPAT_DTD=OFF -DCMAKE_C_FLAGS=-DXML_DTD=1
    cmake --build "$3.build" --target install
}

build_openssl() { # source target prefix
    local configuration=mingw64
    [ "$2" = i686 ] && configuration=mingw
    mkdir -p "$3.build" && cd "$3.build"
    "$1/Configure" "$configuration" --cross-compile-prefix="$2-w64-mingw32-" --prefix="$3" --libdir=lib \
        no-shared no-tests no-engine no-dso no-module no-comp no-ssl3 no-dtls no-asm
    make -j"$(nproc)" -s build_libs
    make -s install_dev
}

# Builds one library unless this version of it is there; the finished folder appears in one step.
provide_library() { # package target -> folder
    local package=$1 target=$2 version
    version=$(source_version "$package")
    local finished=$store/$target/$package-${version//[^A-Za-z0-9.+-]/_}
    if [ ! -d "$finished/lib" ]; then
        local source
        source=$(unpack_source "$package" "$version")
        rm -rf "$finished" "$finished.build"
        mkdir -p "$store/$target"
        echo "building $package $version for $target" >&2
        if ! ("build_$package" "$source" "$target" "$finished") >"$finished.log" 2>&1; then
            rm -rf "$finished"
            tail -n 40 "$finished.log" >&2
            return 1
        fi
        rm -rf "$finished.build"
    fi
    echo "$finished"
}
