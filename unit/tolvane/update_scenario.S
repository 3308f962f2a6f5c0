    .section .rodata
    .globl tolvane_update_scenario_begin
    .globl tolvane_update_scenario_end
tolvane_update_scenario_begin:
    .incbin TOLVANE_UPDATE_SCENARIO
tolvane_update_scenario_end:
    .section .note.GNU-stack, "", @progbits
