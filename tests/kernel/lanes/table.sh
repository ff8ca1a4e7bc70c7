# What each verb of the tool says of each fault, at each of its phases: the rows of faults.table. Leaves what was said in table.txt.

verb_on() { # VERB SERIAL
    case "$1" in
        stream) zentara stream --camera "$2" --frames 8 ;;
        dump) zentara firmware dump --force --camera "$2" --length 4096 "$TMPDIR/dump-$2" ;;
        get) zentara xu get --camera "$2" 1 ;;
        reg) zentara reg read --camera "$2" tof 0x21 ;;
        *) eval "zentara $1 --camera $2" ;;
    esac
}
plug_row() { # SERIAL MODEL OPTION...
    local shape=--no-microphone
    [[ $2 != *-iso ]] || shape+=' --isochronous'
    # shellcheck disable=SC2086
    plug "$1" 2 --camera "${2%-iso}" $shape "${@:3}"
}
is_open() { # NODE
    local file
    for file in /proc/[0-9]*/fd/*; do [ ! "$file" -ef "$1" ] || return 0; done
    return 1
}

# One row: the verb ends as it should and has let go of the camera; when the camera was pulled out, all goes
# well once it is plugged in again.
try_row() {
    local serial=ROW$1 wanted=$2 verb=$3 model=$4 fault=$5 pattern=$6 status=0 began took node wrong=
    plug_row "$serial" "$model" --fault "$fault"
    node=$(node_of "$serial" 0)
    began=${EPOCHREALTIME/./}
    verb_on "$verb" "$serial" >"$TMPDIR/$serial" 2>&1 || status=$?
    took=$(((${EPOCHREALTIME/./} - began) / 100000))
    ! is_open "$node" || wrong+="; $node is still open"
    unplug "$serial"
    if [[ $fault = *unplug* ]]; then
        plug_row "$serial" "$model"
        verb_on "$verb" "$serial" >"$TMPDIR/$serial.again" 2>&1 || wrong+="; again: status $?: $(cat "$TMPDIR/$serial.again")"
        unplug "$serial"
    fi
    local said
    mapfile -t said < <(tail -n 3 "$TMPDIR/$serial")
    printf '%s | %s | %s | %s | %s.%s s | %s\n' "$status" "$verb" "$model" "$fault" $((took / 10)) $((took % 10)) "${said[*]}" \
        >"$TMPDIR/$serial.row"
    # shellcheck disable=SC2053
    [[ $status = $wanted ]] || wrong+="; status $status instead of $wanted"
    grep -qE -- "$pattern" "$TMPDIR/$serial" || wrong+="; no '$pattern'"
    [ "$status" = 0 ] || [ "$(grep -c "^zentara [a-z ]*: " "$TMPDIR/$serial")" -le 1 ] || wrong+="; it fails twice"
    [ -z "$wrong" ] || echo "$verb, $model, $fault$wrong: ${said[*]}" >"$TMPDIR/$serial.wrong"
}

# try_rows NUMBER: every third row, from that one on.
try_rows() {
    local number=0 status verb model fault pattern
    trap unplug_all EXIT
    while IFS='|' read -r status verb model fault pattern; do
        number=$((number + 1))
        [ $((number % 3)) = "$1" ] || continue
        verb=${verb# } model=${model# } fault=${fault# } pattern=${pattern# }
        try_row "$number" "${status% }" "${verb% }" "${model% }" "${fault% }" "$pattern"
    done <"$TMPDIR/rows"
}

# Three rows at once: most of them wait.
test_faults_of_every_verb() {
    use_real_cameras
    local first row rows
    grep -v '^#' "$here/faults.table" >"$TMPDIR/rows"
    rows=$(wc -l <"$TMPDIR/rows")
    for first in 0 1 2; do (try_rows $first) & done
    wait
    for row in $(seq "$rows"); do cat "$TMPDIR/ROW$row.row" || true; done >"$ZENTARA_JOB/table.txt"
    ! cat "$TMPDIR"/ROW*.wrong 2>/dev/null || return 1
    [ "$(wc -l <"$ZENTARA_JOB/table.txt")" = "$rows" ]
}

test_a_silent_camera_disturbs_no_other() {
    use_real_cameras
    plug SILENT 2 --camera ZS570 --no-microphone --fault 'unit silent'
    plug PLAIN 2 --camera plain --no-microphone
    zentara xu get --camera SILENT 1 >"$TMPDIR/silent" 2>&1 &
    eventually 10 is_open "$(node_of SILENT 0)"
    expect '3 of 3' zentara stream --camera PLAIN --mode 320x240@15 --frames 3
    wait $! || true
    grep -q 'has not answered for 1.8 s' "$TMPDIR/silent"
}

# The reasons that a camera may have, by their numbers, in the kernel's errors and our words.
test_a_refusal_says_its_reason() {
    use_real_cameras
    local reason=0 words faults=()
    for reason in {1..8}; do faults+=(--fault "unit stall after $((reason - 1)) times 1 reason $reason"); done
    plug K1 2 --camera ZS570 --no-microphone "${faults[@]}"
    while read -r words; do
        refuse 1 "/dev/video[0-9]+: cannot get control 1 of unit 6: $words\$" zentara xu get --camera K1 1
    done <<'rows'
the camera is not ready: Device or resource busy
the camera is in the wrong state for it: (Permission denied|Invalid or incomplete .*)
the camera has too little power for it: Object is remote
the value is out of the camera's range: Numerical result out of range
(the control does not do that: Invalid request code|the camera refused it: Input.output error)
(the control does not do that: Invalid request code|the camera refused it: Input.output error)
(the control does not do that: Invalid request code|the camera refused it: Input.output error)
the camera does not take the value: Invalid argument
rows
    expect '^5A 01 02 03 04' zentara xu get --camera K1 1
}
