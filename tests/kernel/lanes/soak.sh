# Cameras used side by side for $MINUTES, one unless told: one at USB level among three simulated ones, with nodes made anew and
# one call in a hundred failing.

# one_in_a_hundred PLACE KIND: options for a camera, by which that goes wrong at that place, for a thousand calls.
one_in_a_hundred() {
    local at
    for ((at = RANDOM % 200; at < 100000; at += 1 + RANDOM % 200)); do printf '%s\n' --fault "$1 $2 after $at times 1"; done
}

test_nothing_grows_and_nothing_is_left() {
    local faults file
    RANDOM=1
    use_real_cameras
    for file in "$ZENTARA_BUILD"/cameras/{ov0570,vc0258}.json; do # these stay simulated
        sed 's/"frameRate": 60/"frameRate": 15/' "$file" >"$ZENTARASDK_ROOT/cameras/${file##*/}"
    done
    echo '{ "format": 1, "cameras": [{ "model": "ZS570", "serialNumber": "LEFT" }, { "model": "ZS570", "serialNumber": "RIGHT" },
        { "model": "ZS258", "serialNumber": "OLD" }] }' >"$ZENTARA_SIMULATED_CAMERAS"
    mapfile -t faults < <(one_in_a_hundred unit stall; one_in_a_hundred frame short; one_in_a_hundred sound zero)
    plug USB 2 --camera ZS345 "${faults[@]}"
    "$ZENTARA_BUILD/bin/zentara_soak" "${MINUTES:-1}" >"$ZENTARA_JOB/soak.txt" 2>&1 || { cat "$ZENTARA_JOB/soak.txt" && return 1; }
    grep -q '^4 cameras' "$ZENTARA_JOB/soak.txt"
    tail -n 2 "$ZENTARA_JOB/soak.txt"
}
