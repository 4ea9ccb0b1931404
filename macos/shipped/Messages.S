// objc_msgSend and its siblings. Each keeps every register that an argument may be in, asks Messages.cpp for the method
// (its address, and whether it answers a BOOL), puts the arguments back and goes on to the method as if it had been
// called directly. Only for a BOOL does it come back, to widen the result to 32 bits.

#if defined(__x86_64__)

// `receiver` and `selector` are the registers that hold what `ask` wants first and second.
.macro find_method name, ask, receiver=%rdi, selector=%rsi
  .globl \name
  .type \name, @function
\name:
  .cfi_startproc
  pushq %rbp
  .cfi_def_cfa_offset 16
  .cfi_offset %rbp, -16
  movq %rsp, %rbp
  .cfi_def_cfa_register %rbp
  subq $0xC0, %rsp
  movaps %xmm0, -0x10(%rbp)
  movaps %xmm1, -0x20(%rbp)
  movaps %xmm2, -0x30(%rbp)
  movaps %xmm3, -0x40(%rbp)
  movaps %xmm4, -0x50(%rbp)
  movaps %xmm5, -0x60(%rbp)
  movaps %xmm6, -0x70(%rbp)
  movaps %xmm7, -0x80(%rbp)
  movq %rdi, -0x88(%rbp)
  movq %rsi, -0x90(%rbp)
  movq %rdx, -0x98(%rbp)
  movq %rcx, -0xA0(%rbp)
  movq %r8, -0xA8(%rbp)
  movq %r9, -0xB0(%rbp)
  .ifnc \receiver, %rdi
  movq \receiver, %rdi
  movq \selector, %rsi
  .endif
  call \ask
  movq %rax, %r11
  movq %rdx, %r10
  movaps -0x10(%rbp), %xmm0
  movaps -0x20(%rbp), %xmm1
  movaps -0x30(%rbp), %xmm2
  movaps -0x40(%rbp), %xmm3
  movaps -0x50(%rbp), %xmm4
  movaps -0x60(%rbp), %xmm5
  movaps -0x70(%rbp), %xmm6
  movaps -0x80(%rbp), %xmm7
  movq -0x88(%rbp), %rdi
  movq -0x90(%rbp), %rsi
  movq -0x98(%rbp), %rdx
  movq -0xA0(%rbp), %rcx
  movq -0xA8(%rbp), %r8
  movq -0xB0(%rbp), %r9
  leave
  .cfi_def_cfa %rsp, 8
.endm

.macro go_on name
  testq %r10, %r10
  jnz 1f
  jmp *%r11
1:
  subq $8, %rsp // calls are made with the stack on a multiple of 16
  .cfi_adjust_cfa_offset 8
  call *%r11
  movzbl %al, %eax
  addq $8, %rsp
  .cfi_adjust_cfa_offset -8
  ret
  .cfi_endproc
  .size \name, . - \name
.endm

  .text
  find_method objc_msgSend, shippedMethod
  go_on objc_msgSend

  // The first argument is the place for the result; receiver and selector follow.
  find_method objc_msgSend_stret, shippedMethodAnsweringStructure, %rsi, %rdx
  go_on objc_msgSend_stret

  find_method objc_msgSendSuper, shippedMethodOfSuper
  movq (%rdi), %rdi // of the structure the method gets the receiver alone
  go_on objc_msgSendSuper

#elif defined(__aarch64__)

.macro find_method name, ask
  .globl \name
  .type \name, %function
\name:
  .cfi_startproc
  stp x29, x30, [sp, #-0xE0]!
  .cfi_def_cfa_offset 0xE0
  .cfi_offset x29, -0xE0
  .cfi_offset x30, -0xD8
  mov x29, sp
  stp x0, x1, [sp, #0x10]
  stp x2, x3, [sp, #0x20]
  stp x4, x5, [sp, #0x30]
  stp x6, x7, [sp, #0x40]
  str x8, [sp, #0x50] // the place for a result in memory
  stp q0, q1, [sp, #0x60]
  stp q2, q3, [sp, #0x80]
  stp q4, q5, [sp, #0xA0]
  stp q6, q7, [sp, #0xC0]
  bl \ask
  mov x16, x0
  mov x17, x1
  ldp q6, q7, [sp, #0xC0]
  ldp q4, q5, [sp, #0xA0]
  ldp q2, q3, [sp, #0x80]
  ldp q0, q1, [sp, #0x60]
  ldr x8, [sp, #0x50]
  ldp x6, x7, [sp, #0x40]
  ldp x4, x5, [sp, #0x30]
  ldp x2, x3, [sp, #0x20]
  ldp x0, x1, [sp, #0x10]
  ldp x29, x30, [sp], #0xE0
  .cfi_restore x29
  .cfi_restore x30
  .cfi_def_cfa_offset 0
.endm

.macro go_on name
  cbnz x17, 1f
  br x16
1:
  stp x29, x30, [sp, #-0x10]!
  .cfi_def_cfa_offset 0x10
  .cfi_offset x29, -0x10
  .cfi_offset x30, -0x8
  blr x16
  and w0, w0, #0xFF
  ldp x29, x30, [sp], #0x10
  .cfi_restore x29
  .cfi_restore x30
  .cfi_def_cfa_offset 0
  ret
  .cfi_endproc
  .size \name, . - \name
.endm

  .text
  find_method objc_msgSend, shippedMethod
  go_on objc_msgSend

  find_method objc_msgSendSuper, shippedMethodOfSuper
  ldr x0, [x0] // of the structure the method gets the receiver alone
  go_on objc_msgSendSuper

#endif

  .section .note.GNU-stack, "", %progbits
