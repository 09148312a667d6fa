// The panel's bitmaps under their resource numbers, as vstgui/resource_embedded.cpp reads them: a
// table of number, offset from the table and size, ended by number 0, and the bitmaps from their
// information header on.

    .section .rodata
    .balign 4
    .globl vstgui_embedded_bitmaps
    .hidden vstgui_embedded_bitmaps
vstgui_embedded_bitmaps:
    .irp number, 127, 128, 129, 130, 131, 132, 150, 151, 152, 153, 154, 155, 156, 157, 158
    .long \number, bitmap_\number - vstgui_embedded_bitmaps, bitmap_\number\()_end - bitmap_\number
    .endr
    .long 0

    .irp number, 127, 128, 129, 130, 131, 132, 150, 151, 152, 153, 154, 155, 156, 157, 158
    .balign 4
bitmap_\number:
    .incbin "\number\().bmp", 14 // the file's own header
bitmap_\number\()_end:
    .endr

    .section .note.GNU-stack, "", @progbits
