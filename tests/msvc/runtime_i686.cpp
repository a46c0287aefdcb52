// SPDX-License-Identifier: MIT
// What a 32-bit program built for the MSVC ABI expects from MSVC's own runtime library and mingw-w64
// does not supply: the 64-bit remainder the battery's generator uses (u64 % u64). The name is the
// runtime's, undecorated; the callee pops its 16 bytes of arguments and returns in EDX:EAX, which
// is __stdcall. Written with 32-bit steps only, so that it does not call itself.
typedef unsigned long long u64;

extern "C" u64 __stdcall unsignedRemainder(u64 dividend, u64 divisor) __asm__("__aullrem");

extern "C" u64 __stdcall unsignedRemainder(u64 dividend, u64 divisor)
{
    u64 remainder = 0;
    for (int bit = 63; bit >= 0; --bit) {
        // remainder < divisor before the shift; a bit shifted out means the true value passed 2^64,
        // and the subtraction modulo 2^64 still gives the right remainder.
        const bool carry = (remainder >> 63) != 0;
        remainder = (remainder << 1) | ((dividend >> bit) & 1);
        if (carry || remainder >= divisor) remainder -= divisor;
    }
    return remainder;
}
