// SPDX-License-Identifier: MIT
// libguardscalars: the out-of-line copy of every guard operation. All of them are defined inline in
// <quillon/GuardScalars>; this library is built with -fkeep-inline-functions, so that each one is
// also emitted here and exported (the version script keeps the export list to the guard classes),
// and a caller that links the copy gets the same bits as one that inlines it.
#include <quillon/GuardScalars>
