#!/usr/bin/env bash
# A host that links the contract alone: it loads the pane, and what draws is opened when it asks for the view.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh" "$@"

cp -r "$stage" "$work/copy"
mkdir "$work/source"
cat >"$work/source/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(plain-host LANGUAGES CXX)
find_package(Imprinter 0.1 REQUIRED)
add_executable(plain-host main.cpp)
target_link_libraries(plain-host PRIVATE Imprinter::Host)
target_compile_definitions(plain-host PRIVATE PANE="${Imprinter_PANE}")
END
cat >"$work/source/main.cpp" <<'END'
#include <PreferencePanes/NSPreferencePane.h>
#include <host/VelImprinterPlugin.h>

#include <iostream>
#include <stdexcept>

int main() {
    const auto bundle = platform::NSBundle::bundleWithPath(PANE);
    std::string problem;
    if (!bundle || !bundle->load(problem))
        return std::cout << "no pane: " << problem << '\n', 1;
    const auto pane = std::dynamic_pointer_cast<platform::NSPreferencePane>(bundle->principalClass()->make());
    pane->setBundle(bundle);
    std::cout << "loaded" << std::endl;
    try {
        if (pane->loadMainView())
            return std::cout << "a view\n", 1;
    } catch (const std::runtime_error& error) {
        std::cout << "thrown: " << error.what() << '\n';
    }
    for (const auto& each : pane->interfaceProblems())
        std::cout << each << '\n';
}
END
cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/copy" -DCMAKE_CXX_FLAGS='-Wall -Wextra -Werror' \
    >"$work/log" 2>&1 && cmake --build "$work/build" >>"$work/log" 2>&1 || fail "$(cat "$work/log")"

host=$work/build/plain-host
! LD_TRACE_LOADED_OBJECTS=1 "$host" | grep -q 'libQt6Widgets\|libimprinter-platform-qt' || fail "it links the toolkit"
said() { "$host" 2>"$work/log" || fail "it ended with $?: $(cat "$work/log")"; }
name=$(sed -n '/NSMainNibFile/{n;s/.*<string>\(.*\)<.*/\1/p}' "$work/copy/lib/imprinter/ImprinterPrefPane.prefPane/Info.plist")
expected="loaded
$name.ui cannot be read: there is no QApplication, which widgets need"
[ "$(said)" = "$expected" ] || fail "without an application: $(said)"
grep -q 'there is no QApplication' "$work/log" || fail "the log: $(cat "$work/log")"

library=$work/copy/lib/imprinter/lib/libimprinter-platform-qt.so
for damage in rm truncate; do
    if [ "$damage" = rm ]; then rm "$library"; else : >"$library"; fi
    [[ $(said) = $'loaded\nthrown: The toolkit\'s part of the platform layer cannot be loaded: '*libimprinter-platform-qt.so* ]] ||
        fail "$damage: $(said)"
done
cp "$work/copy/lib/imprinter/lib/libimprinter-host.so" "$library"
[[ $(said) = *'cannot be loaded: '*libimprinter-platform-qt.so*imprinterToolkit* ]] || fail "another library: $(said)"
