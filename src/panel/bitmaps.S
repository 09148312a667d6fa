// The panel's bitmaps under their resource numbers, as vstgui/resource_embedded.cpp reads them: a
// table of number, offset from the table and size, ended by number 0, and the bitmaps from their
// information header on. The packed ones of two and three times the size follow the others.

    .macro entry number
    .long \number, bitmap_\number - vstgui_embedded_bitmaps, bitmap_\number\()_end - bitmap_\number
    .endm

    .macro bitmap number, file, skipped
    .balign 4
bitmap_\number:
    .incbin "\file", \skipped
bitmap_\number\()_end:
    .endm

    .section .rodata
    .balign 4
    .globl vstgui_embedded_bitmaps
    .hidden vstgui_embedded_bitmaps
vstgui_embedded_bitmaps:
    .irp number, 127, 128, 129, 130, 131, 132, 150, 151, 152, 153, 154, 155, 156, 157, 158
    entry \number
    .endr
    .irp number, 128, 129, 130, 132, 150, 151, 152, 153, 154, 155, 156, 157, 158
    entry 2\number
    entry 3\number
    .endr
    .long 0

    .irp number, 127, 128, 129, 130, 131, 132, 150, 151, 152, 153, 154, 155, 156, 157, 158
    bitmap \number, "\number\().bmp", 14 // the file's own header
    .endr
    .irp number, 128, 129, 130, 132, 150, 151, 152, 153, 154, 155, 156, 157, 158
    bitmap 2\number, "2\number\().packed", 0
    bitmap 3\number, "3\number\().packed", 0
    .endr

    .section .note.GNU-stack, "", @progbits
