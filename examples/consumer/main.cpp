// SPDX-License-Identifier: MIT
// Uses the library (installed, or as a subproject): turns a point a quarter turn about z, moves it, and checks the
// result against what the arithmetic must give. Exit status 0 when all holds.
#include <quillon/Names>

#include <cmath>
#include <cstdio>
#include <quillon/Batch> // mapPoints, from libquillon_batch

int main()
{
    Transform<double> t;
    quillon::turnZ(t, std::acos(-1.0) / 2); // a quarter turn about z (Function_2424)
    quillon::move(t, 'y', 3.0);             // then up 3 (Function_2428)
    const ThreeDVector<int> p = t * ThreeDVector<int>(2, 0, 0);
    const ThreeDVector<guardint> q = t * ThreeDVector<guardint>(2, 0, 0);
    guarddouble limit = guarddouble(1.0) / guarddouble(0.0);
    std::printf("(2, 0, 0) -> int (%d, %d, %d), guardint (%d, %d, %d); 1/0 = %a\n", p.GetX(), p.GetY(),
                p.GetZ(), q.GetX().value(), q.GetY().value(), q.GetZ().value(), limit.value());
    // cos(pi/2) * 2 is a tiny positive number: truncated to 0 for int, nearest 0 for guardint.
    bool ok = p.GetX() == 0 && p.GetY() == 5 && q.GetY().value() == 5 && limit.value() == 0x1p1022;
    // The batch call (libquillon_batch) gives what the operator gives, point for point.
    ThreeDVector<double> points[13];
    for (int i = 0; i < 13; ++i) points[i] = ThreeDVector<double>(i * 0.1, 1.0 - i, i * 7.5);
    ThreeDVector<double> mapped[13];
    quillon::mapPoints(t, points, mapped, 13);
    for (int i = 0; i < 13; ++i) ok = ok && mapped[i] == t * points[i];
    return ok ? 0 : 1;
}
