# Microphones and sound cards beside those of cameras: what they have not, who may use them, and those that fall silent or go.

# says FILE LINE...: its lines are these patterns, one after the other, and there is no other.
says() {
    local file=$1 line number=0
    shift
    while read -r line; do
        number=$((number + 1))
        [[ $number -le $# && $line =~ ^${!number}$ ]] || { cat "$file" >&2 && return 1; }
    done <"$file"
    [ $number = $# ]
}
run_steps() { "$device" "$@" 2>"$TMPDIR/said" >"$TMPDIR/sound" || { cat "$TMPDIR/said" >&2 && return 1; }; }

# A card of 8 and 16 bits with a mixer, and one of 16 to 32 bits without; each for one program at a time.
load_cards() {
    modprobe snd-dummy index=8 model=emu10k1 pcm_devs=1 pcm_substreams=1
    modprobe snd-aloop index=9 pcm_substreams=1
    eventually 10 test -e /dev/snd/pcmC9D0c
}

test_a_card_is_asked_for_what_it_has() {
    load_cards
    local mode level
    for level in 2 -1; do refuse 1 "level of a microphone is from 0 to 1, not $level" "$device" hw:8,0 level=$level; done
    for mode in 2,24,48000 3,16,48000 2,16,96000 2,12,48000 2,16,50; do
        refuse 1 'hw:8,0: the microphone does not have .*; it has 2 channels of 16 bits at 48000 Hz' "$device" hw:8,0 start=$mode
    done
    refuse 1 'hw:8,0: cannot start .*: the device streams already; disable it first' "$device" hw:8,0 start start
    run_steps hw:8,0 read=1 level=0.5 start=1,8,8000 read=1 stop read=1 start sleep=1000 read=2 stop
    says "$TMPDIR/said" '3 0 0' '0 [0-9]+ 80' '3 [0-9]+ [0-9]+' '0 [0-9]+ 1920' '0 [0-9]+ 1920'
    refuse 1 'hw:9,0: .* no control of its input.s level' "$device" hw:9,0 level=0.5
    refuse 1 'hw:9,0: .* no control that mutes its input' "$device" hw:9,0 mute=1
    run_steps hw:9,0 start=2,32,48000 read=1 stop
    says "$TMPDIR/said" '0 [0-9]+ 3840'
    run_steps hw:9,0 start=2,24,48000 read=1
    says "$TMPDIR/said" '0 [0-9]+ 2880'
}

test_a_card_is_used_by_who_may_and_by_one_at_a_time() {
    [ -e /dev/snd/pcmC9D0c ] || load_cards
    refuse 1 'hw:8,0: cannot open the microphone: Permission denied' as_user nogroup "$device" hw:8,0 start
    refuse 1 'hw:7,0: cannot open the microphone: No such file' "$device" hw:7,0 start
    arecord -q -D hw:8,0 -f S16_LE -c 2 -r 48000 -t raw "$TMPDIR/sound" &
    local holder=$!
    eventually 10 test -s "$TMPDIR/sound"
    refuse 1 'hw:8,0: cannot open the microphone: Device or resource busy; another program listens' "$device" hw:8,0 start
    kill $holder
}

# statuses COUNT:STATUS...: of the readings, one kind after the other; a COUNT of "+" is any.
statuses() {
    local found word
    found=$(cut -d' ' -f1 "$TMPDIR/said" | uniq -c | awk '{ printf "%s:%s ", $1, $2 }')
    for word; do
        [[ $found =~ ^${word/+/[0-9]+}\ (.*)$ ]] || { cat "$TMPDIR/said" >&2 && return 1; }
        found=${BASH_REMATCH[1]}
    done
    [ -z "$found" ]
}

test_a_microphone_falls_silent_or_goes() {
    use_real_cameras
    plug SILENT 2 --camera plain --fault 'sound silent after 200'
    run_steps "$(card_of SILENT)" start read=22 stop
    [ "$(tail -n 1 "$TMPDIR/said" | cut -d' ' -f1)" = 1 ] # in time, with nothing
    unplug SILENT
    plug GOES 2 --camera plain
    rm "$TMPDIR/sound"
    local card reader
    card=$(card_of GOES)
    run_steps "$card" start read=200 stop &
    reader=$!
    eventually 10 test -s "$TMPDIR/sound"
    unplug GOES
    wait $reader
    statuses +:0 +:4
}
