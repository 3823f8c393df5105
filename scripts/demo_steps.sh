# The steps of the demonstration. They work in $scratch with $program and $examples.

titleOfMode=([1]="the phone gets what the organizer has; on a full phone older entries make room"
    [2]="the phone is filled up with what the organizer has; nothing is removed"
    [3]="the organizer gets what the phone has, whatever its date"
    [4]="each side gets what only the other one has")

fail() {
    echo "demo: $*" >&2
    exit 1
}

expect() { # what, wanted, found
    [[ "$2" == "$3" ]] || fail "$1: expected $2, found $3"
}

headline() {
    echo
    echo "=== $*"
}

freshCopy() {
    side="$scratch/$1"
    mkdir "$side"
    cp -R "$examples/." "$side"
    mkdir "$side/home"
}

runProgram() { # exit status wanted, words...
    local wanted="$1" status=0
    shift
    "$program" --phone "dir:$side/phone" --organizer "folder:$side/organizer" \
        --settings "$side/settings.toml" --home "$side/home" "$@" VCAL \
        2>"$side/errors.txt" || status=$?
    if [[ $status != "$wanted" ]]; then
        cat "$side/errors.txt" >&2
    fi
    expect "exit status" "$wanted" "$status"
}

# Name and content of every file of both sides.
fingerprint() {
    (cd "$side" && find phone organizer -type f -exec sha256sum {} + | sort)
}

objects() { find "$side/phone/telecom/cal" -name '*.vcs' | wc -l; }
items() { find "$side/organizer/calendar" -name '*.ics' | wc -l; }

# Files that were there before and are not there now, or differ. The phone's counters may differ.
changedFiles() {
    comm -23 <(echo "$1") <(fingerprint) | grep -vc 'telecom/cal/info.log$' || true
}

showPreview() {
    headline "A preview of mode 4: nothing is written"
    freshCopy preview
    local before
    before="$(fingerprint)"
    runProgram 0 --set SyncTyp=4 --dry-run | grep -v '^$' >"$side/preview.txt"
    head -n 12 "$side/preview.txt"
    echo "... $(($(wc -l <"$side/preview.txt") - 12)) lines more"
    expect "files after a preview" "$before" "$(fingerprint)"
    [[ ! -e "$side/home/logFile.rtf" ]] || fail "the preview wrote a log file"
}

showMode() { # mode, new on the phone, new in the organizer
    headline "Mode $1: ${titleOfMode[$1]}"
    freshCopy "mode$1"
    local before objectsBefore itemsBefore after
    before="$(fingerprint)" objectsBefore="$(objects)" itemsBefore="$(items)"
    runProgram 0 --set "SyncTyp=$1"
    echo
    echo "phone: $objectsBefore objects before, $(objects) after;" \
        "organizer: $itemsBefore items before, $(items) after"
    expect "new objects on the phone" "$2" "$(($(objects) - objectsBefore))"
    expect "new items in the organizer" "$3" "$(($(items) - itemsBefore))"
    expect "old files that were changed" 0 "$(changedFiles "$before")"

    after="$(fingerprint)"
    runProgram 0 --set "SyncTyp=$1" >"$side/second.txt"
    expect "files after a second run" "$after" "$(fingerprint)"
    echo "a second run: nothing was written, $(objects) objects, $(items) items"
}

showGuard() {
    headline "Mode 1 on a phone with 40 places, no more than 5 entries may be removed"
    freshCopy guard
    local before
    before="$(fingerprint)"
    runProgram 5 --set SyncTyp=1 --set freeMobileEntries=160 --max-remove 5 >/dev/null
    grep -- '--max-remove' "$side/errors.txt" || fail "the guard gave no reason"
    expect "files after the guard" "$before" "$(fingerprint)"
    echo "the run stopped before the first write (exit status 5)"
}
