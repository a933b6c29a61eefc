#!/usr/bin/env bash
# Checks what scripts/wine.sh does to its user's folders and shell: it removes nothing that it did not make, and changes
# nothing in the shell. Wine itself does not start: a stand-in records its arguments.
#   wine_prefix.sh SOURCE-FOLDER WORK-FOLDER
set -euo pipefail
source=$1 work=$2
rm -rf "$work"
mkdir -p "$work/bin"
cd "$work"
fail() { echo "wine_prefix: $*"; exit 1; }

for program in wine wineserver; do
    cat >bin/$program <<'STAND_IN'
#!/usr/bin/env bash
echo "$WINEPREFIX ${DISPLAY-none} $WINEARCH $WINEDLLOVERRIDES: $*" >>"$WINE_CALLS"
locale charmap >>"$WINE_CALLS.locale"
case "$*" in wineboot*) touch "$WINEPREFIX/system.reg" && exit "${WINEBOOT_ENDS_WITH:-0}" ;; esac
STAND_IN
    chmod +x bin/$program
done
export PATH=$work/bin:$PATH WINE_CALLS=$work/calls DISPLAY=:7 WINEDLLOVERRIDES=mine

# ---- The shell: new functions, and nothing else
export -p >before
. "$source/scripts/wine.sh"
export -p >after
diff before after || fail "the variables of the shell have changed"

# ---- A folder of another owner stays
mkdir theirs
echo mail >theirs/user.reg
for make in "wine_prefix_make theirs" "wine_prefix_copy bin theirs"; do
    ! $make 2>said || fail "$make accepts a folder that it did not make"
    [ "$(ls -A theirs)" = user.reg ] && [ "$(cat theirs/user.reg)" = mail ] || fail "$make changes that folder"
    grep -q "theirs was not made here" said || fail "$make does not give the reason"
done
[ ! -e calls ] || fail "Wine was started nevertheless"

# ---- It makes its own folder again, also after a run that was interrupted
mkdir empty
for folder in fresh empty; do
    wine_prefix_make $folder || fail "no prefix in $folder"
    grep -q "^$folder none win64 winedbg.exe=d;.*: wineboot -i$" calls || { cat calls; fail "other variables than Wine's own"; }
    touch $folder/old
    wine_prefix_make $folder || fail "no second prefix in $folder"
    [ ! -e $folder/old ] && [ -e $folder/system.reg ] || fail "the second prefix is not fresh"
done
! WINEBOOT_ENDS_WITH=1 wine_prefix_make broken || fail "a failed start of Wine is not detected"
wine_prefix_make broken || fail "the leftovers of an interrupted run make the next one fail"

# ---- On a bare system, too, files have names beyond ASCII; a locale that supports them stays the reader's
for spoken in C POSIX C.UTF-8; do
    rm calls.locale
    LC_ALL=$spoken wine_in fresh wine program.exe || fail "no program in the locale $spoken"
    [ "$(cat calls.locale)" = UTF-8 ] || fail "in the locale $spoken Wine cannot name each file"
done

# ---- A copy is one of ours
wine_prefix_copy fresh copy
touch copy/old
wine_prefix_copy fresh copy || fail "no second copy"
[ ! -e copy/old ] && [ -e copy/system.reg ] || fail "the second copy is not fresh"

# ---- A wait has a time limit, and then shows the present state
echo 'it began' >written
wine_await 1 written began || fail "a written text is not found"
wine_await 1 written '' || fail "an existing file is not found"
{ sleep 0.5; echo 'it ended' >>written; } &
wine_await 30 written ended || fail "a text that is written during the wait is not found"
echo 'nobody came' >other
for awaited in 'written never' 'missing never' 'missing'; do
    status=0
    wine_await 1 ${awaited% *} "${awaited#* }" other 2>said || status=$?
    [ $status = 1 ] || fail "waiting for $awaited ends with $status"
    grep -q 'not within 1 s' said && grep -q 'nobody came' said || fail "it does not print the contents of the files"
done

# ---- The tests' prefix that was made before the mark existed
mkdir -p old.pristine old
touch old.pristine/system.reg old/left
"$source/scripts/test-prefix.sh" begin old || fail "a prefix without a mark beside its pristine one is refused"
[ ! -e old/left ] && [ -e old/system.reg ] || fail "the prefix is not fresh"
mkdir -p mine
touch mine/system.reg
! "$source/scripts/test-prefix.sh" begin mine 2>said || fail "test-prefix.sh accepts a folder that it did not make"
[ -e mine/system.reg ] || fail "test-prefix.sh removes that folder"
export -p >after
diff before after || fail "a function changes the variables of the shell"
echo "wine_prefix: as it should be"
