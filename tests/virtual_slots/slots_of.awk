# Prints "SLOT OPERATION" for each virtual operation that a class declares itself, from what Clang
# says of the virtual tables. A destructor is one slot, though some binary interfaces give it two
# entries: what comes after them moves up.

/^VF?Table indices for / {
    inside = 1
    destructors = 0
    next
}

!NF { inside = 0 }

inside {
    slot = operation = $0
    sub(/ *\|.*/, "", slot)
    sub(/^[^|]*\| /, "", operation)
    sub(/ \[[^][]*\]$/, "", operation)
    sub(/ \[[^][]* = [^][]*\]$/, "", operation)
    gsub(/zvk::(Pelkraft::)?/, "", operation)
    if (operation !~ /::~/ || !destructors++)
        print slot - (destructors > 1), operation
}
