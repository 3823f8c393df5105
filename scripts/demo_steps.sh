# The steps of the demonstration. They work in $scratch with $program and $examples.

titleOfMode=([1]="the phone gets what the organizer has; in a full calendar older entries make room"
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
        --settings "$side/settings.toml" --home "$side/home" "$@" BOTH \
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

# Entries and contacts of both sides: "38 entries and 39 contacts".
onPhone() { holds phone/telecom/cal/*.vcs phone/telecom/pb/*.vcf; }
inOrganizer() { holds organizer/calendar/*.ics organizer/contacts/Kontakte/*.vcf; }

holds() { # two patterns
    echo "$(find "$side" -path "$side/$1" | wc -l) entries and" \
        "$(find "$side" -path "$side/$2" | wc -l) contacts"
}

# Files that were there before and are not there now, or differ. The phone's counters may differ.
changedFiles() {
    comm -23 <(echo "$1") <(fingerprint) | grep -vc 'telecom/[a-z]*/info.log$' || true
}

# What a run printed behind its summary, a few rows of each sort. A note tells what an entry loses,
# or which two nearly met.
excerpt() { # file with the output of a run
    awk -v most=5 '
        /^$/ { rows = 1; next }
        !rows { next }
        {
            what = $3 ~ /^[0-9]+-[0-9]+-[0-9]+$/ ? "entries" : "contacts"
            isNote = $1 != "Mobile" && $1 != "PIM"
            where = $1 == "PIM" ? " new in the organizer" : " new on the phone"
            sort = isNote ? "notes, one of each sort" : what where
            if (!count[sort]++) order[++sorts] = sort
            # The end of the file name tells a note on an entry from one on a contact.
            extension = substr($3, length($3) - 2)
            if (isNote ? !seen[$1, $2, extension]++ : count[sort] <= most)
                shown[sort] = shown[sort] "    " $0 "\n"
            else if (!isNote)
                more[sort] = "    ... " count[sort] - most " more\n"
        }
        END {
            for (i = 1; i <= sorts; ++i)
                printf "%d %s\n%s%s", count[order[i]], order[i], shown[order[i]], more[order[i]]
        }' "$1"
}

showPreview() {
    headline "A preview of mode 4: nothing is written"
    freshCopy preview
    local before
    before="$(fingerprint)"
    runProgram 0 --set SyncTyp=4 --dry-run | grep -v '^$' >"$side/output.txt"
    head -n 12 "$side/output.txt"
    echo "... $(($(wc -l <"$side/output.txt") - 12)) lines more"
    expect "files after a preview" "$before" "$(fingerprint)"
    [[ ! -e "$side/home/logFile.rtf" ]] || fail "the preview wrote a log file"
}

showMode() { # mode, what the phone and what the organizer holds afterwards
    headline "Mode $1: ${titleOfMode[$1]}"
    freshCopy "mode$1"
    local before after
    before="$(fingerprint)"
    echo "before: the phone holds $(onPhone), the organizer $(inOrganizer)"
    runProgram 0 --set "SyncTyp=$1" >"$side/output.txt"
    excerpt "$side/output.txt"
    echo "after: the phone holds $(onPhone), the organizer $(inOrganizer)"
    expect "the phone holds" "$2" "$(onPhone)"
    expect "the organizer holds" "$3" "$(inOrganizer)"
    expect "old files that were changed" 0 "$(changedFiles "$before")"

    after="$(fingerprint)"
    runProgram 0 --set "SyncTyp=$1" >"$side/second.txt"
    expect "files after a second run" "$after" "$(fingerprint)"
    echo "a second run wrote nothing"
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
