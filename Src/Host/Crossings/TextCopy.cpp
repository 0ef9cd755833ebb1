// The copy loop; see TextCopy.h.
#include "TextCopy.h"

// Returns 0 if a read failed. The labels mark the instructions that read; each
// reads from one page.
extern "C" __attribute__((visibility("hidden"))) int AvskCopyText(const char *from, char *to, std::size_t most);
extern "C" __attribute__((visibility("hidden"))) const char AvskCopySixteen[];
extern "C" __attribute__((visibility("hidden"))) const char AvskCopyOne[];
extern "C" __attribute__((visibility("hidden"))) const char AvskCopyFailed[];

asm(R"(
    .text
    .p2align 4
    .type AvskCopyText, @function
AvskCopyText:
    .cfi_startproc
    pushl %esi
    .cfi_adjust_cfa_offset 4
    .cfi_rel_offset esi, 0
    pushl %edi
    .cfi_adjust_cfa_offset 4
    .cfi_rel_offset edi, 0
    movl 12(%esp), %esi
    movl 16(%esp), %edi
    movl 20(%esp), %ecx
    xorl %eax, %eax
1:  cmpl %ecx, %eax
    jae 4f
    leal 16(%eax), %edx
    cmpl %ecx, %edx
    ja AvskCopyOne
    leal (%esi,%eax), %edx
    andl $4095, %edx
    cmpl $4080, %edx
    ja AvskCopyOne
AvskCopySixteen:
    movdqu (%esi,%eax), %xmm0
    movdqu %xmm0, (%edi,%eax)
    pxor %xmm1, %xmm1
    pcmpeqb %xmm0, %xmm1
    pmovmskb %xmm1, %edx
    testl %edx, %edx
    jnz 5f
    addl $16, %eax
    jmp 1b
AvskCopyOne:
    movzbl (%esi,%eax), %edx
    movb %dl, (%edi,%eax)
    testl %edx, %edx
    jz 5f
    incl %eax
    jmp 1b
4:  movb $0, (%edi,%eax)
5:  movl $1, %eax
6:  popl %edi
    .cfi_remember_state
    .cfi_adjust_cfa_offset -4
    .cfi_restore edi
    popl %esi
    .cfi_adjust_cfa_offset -4
    .cfi_restore esi
    ret
AvskCopyFailed:
    .cfi_restore_state
    xorl %eax, %eax
    jmp 6b
    .cfi_endproc
    .size AvskCopyText, . - AvskCopyText
)");

namespace crossings {

bool CopyText(const char *from, char *to, std::size_t most) { return AvskCopyText(from, to, most) != 0; }

const void *ResumeAfter(const void *instruction) {
    return instruction == AvskCopySixteen || instruction == AvskCopyOne ? AvskCopyFailed : nullptr;
}

} // namespace crossings
