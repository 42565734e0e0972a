# Source this with a name to run programs for Windows under Wine until the script exits, in a prefix
# of this tree and that name: the end of one script leaves alone what runs under another name.
# Server and services start with their output elsewhere: they would inherit a test's pipe, and ctest
# would wait for them.
export WINEPREFIX=$PWD/build/wineprefix-$1 WINEDEBUG=-all
export WINEDLLOVERRIDES='winedbg.exe=d;mscoree,mshtml='
export WINEPATH='Z:/usr/lib/gcc/x86_64-w64-mingw32/12-posix;Z:/usr/x86_64-w64-mingw32/lib'
unset DISPLAY
wine=/usr/lib/wine/wine64
wineserver=/usr/lib/wine/wineserver64

mkdir -p "$WINEPREFIX"
trap '"$wineserver" -k || true' EXIT
if [ ! -e "$WINEPREFIX/system.reg" ]; then
    "$wine" wineboot -i </dev/null >/dev/null 2>&1
    # It writes the registry once nothing runs any more.
    "$wineserver" -w
fi
# Its answer is 2 where a script that calls this one has started it.
"$wineserver" -p </dev/null >/dev/null 2>&1 || [ $? -eq 2 ]
"$wine" cmd /c exit </dev/null >/dev/null 2>&1
