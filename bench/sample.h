// SPDX-License-Identifier: MIT
// The transform every benchmark of quillon_bench maps with: two turns and a move, so that no
// element is 0 or 1 and each product does real work.
#pragma once

#include <quillon/Transform>

template <class T>
Transform<T> sampleTransform()
{
    Transform<T> t;
    t.Function_2424(0.3);
    t.Function_2422(-0.7);
    t.Function_2428('x', T(12.5));
    t.Function_2428('z', T(-3.25));
    return t;
}
