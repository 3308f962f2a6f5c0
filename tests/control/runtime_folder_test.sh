# The folder of the control sockets, as dvrsim uses it.

start_dvr() {
    start "$1" dvrsim "${@:2}"
    wait_for test -s "$1.out"
}

# refused FILE PROBLEM
refused() {
    run 1 dvrsim
    is err "dvrsim: $folder/tolvane$1: $2"
}

test_folder_and_socket_are_accessible_to_the_user_only() {
    umask 0
    start_dvr dvr
    is <(stat -c %a tolvane tolvane/dvrsim.sock tolvane/dvrsim.lock) 700 600 600
    finish dvr 0
    [ ! -e tolvane/dvrsim.sock ] || fail 'the socket is left'
}

test_unsafe_folders_are_refused() {
    local mode
    mkdir -m 700 elsewhere
    ln -s elsewhere tolvane
    refused '' 'not a folder'
    rm tolvane
    touch tolvane
    refused '' 'not a folder'
    rm tolvane
    mkdir tolvane
    for mode in 750 701 777; do
        chmod $mode tolvane
        refused '' 'other users can access the folder; it must have the permissions 0700'
    done
    chmod 700 tolvane
    if [ "$(id -u)" = 0 ]; then
        chown 65534:65534 tolvane
        refused '' 'the folder belongs to another user'
    fi
}

test_symlinks_and_files_in_the_folder_are_not_used() {
    mkdir -m 700 tolvane
    echo kept >precious
    ln -s "$folder/precious" tolvane/dvrsim.lock
    refused /dvrsim.lock 'Too many levels of symbolic links'
    rm tolvane/dvrsim.lock
    ln -s "$folder/precious" tolvane/dvrsim.sock
    refused /dvrsim.sock 'Socket operation on non-socket'
    is precious kept
}

test_a_name_is_free_only_when_its_process_is_dead() {
    start_dvr dvr
    run 1 dvrsim
    is err 'dvrsim: a dvrsim named dvrsim is running already; give this one another --name'
    start_dvr other --name other
    finish dvr 137 KILL
    [ -S tolvane/dvrsim.sock ] || fail 'a killed process has no time to remove its socket'
    run 3 dvrsim --send state
    is err 'dvrsim: no dvrsim named dvrsim is running'
    start_dvr next
    run 0 dvrsim --send state
    finish next 0
    finish other 0
}

test_without_a_session_folder_tmp_is_used() {
    local session name=shell-test-$$
    mkdir relative
    for session in '' relative /no/such/folder /dev/null; do
        export XDG_RUNTIME_DIR=$session
        start_dvr dvr --name $name
        [ -S "/tmp/tolvane-$(id -u)/$name.sock" ] || fail "no socket in /tmp with '$session'"
        finish dvr 0
    done
    rm "/tmp/tolvane-$(id -u)/$name.lock"
}

test_names_are_words_and_no_paths() {
    local name longest=aaaaaaaabbbbbbbbccccccccdddddddd
    for name in Unit-2_b $longest; do
        run 3 dvrsim --name "$name" --send state
    done
    for name in '' . .. a/b 'a b' a.b ä $'a\n' ${longest}e; do
        run 2 dvrsim --name "$name" --send state
    done
}
