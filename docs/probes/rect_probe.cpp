// What IntersectRect and UnionRect answer for touching, disjoint, empty and inverted
// rectangles.
#include <windows.h>
#include <cstdio>

static void Show(const char* what, RECT a, RECT b) {
    RECT i, u;
    BOOL hasI = IntersectRect(&i, &a, &b);
    BOOL hasU = UnionRect(&u, &a, &b);
    printf("%-10s I %d (%ld,%ld,%ld,%ld) U %d (%ld,%ld,%ld,%ld)\n", what, hasI, i.left, i.top,
           i.right, i.bottom, hasU, u.left, u.top, u.right, u.bottom);
}

int main() {
    Show("disjoint", {0, 0, 2, 2}, {5, 5, 7, 7});
    Show("touching", {0, 0, 2, 2}, {2, 0, 4, 2});
    Show("overlap", {0, 0, 10, 10}, {2, 1, 12, 8});
    Show("empty", {4, 4, 4, 9}, {1, 2, 3, 4});
    Show("twoempty", {4, 4, 4, 9}, {7, 7, 1, 1});
    Show("inverted", {5, 5, 1, 1}, {0, 0, 10, 10});
    return 0;
}
