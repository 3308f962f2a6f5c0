    .section .rodata
    .balign 16
    .globl tolvane_resources_begin
    .globl tolvane_resources_end
tolvane_resources_begin:
    .incbin TOLVANE_RESOURCES
tolvane_resources_end:
    .section .note.GNU-stack, "", @progbits
