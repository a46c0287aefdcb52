// SPDX-License-Identifier: MIT
// The exported instantiations of Transform<T>: every member exists in the module for the three
// element types, whether or not the library itself calls it.
#include <quillon/Transform>

template class Transform<float>;
template class Transform<double>;
template class Transform<guarddouble>;
