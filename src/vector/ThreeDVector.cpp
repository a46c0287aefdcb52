// SPDX-License-Identifier: MIT
// The module holds every member of ThreeDVector for each of the six element types, whether or not
// the library itself calls it. None of them is exported: callers compile the members from the
// header.
#include <quillon/ThreeDVector>

template class ThreeDVector<int>;
template class ThreeDVector<float>;
template class ThreeDVector<double>;
template class ThreeDVector<guardint>;
template class ThreeDVector<guardfloat>;
template class ThreeDVector<guarddouble>;
