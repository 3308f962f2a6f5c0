#include <gtest/gtest.h>
#include <windows.h>

namespace {

bool Equal(const RECT& a, const RECT& b) {
    return EqualRect(&a, &b) != FALSE;
}

TEST(Rectangles, RightAndBottomAreOutside) {
    const RECT rectangle{10, 20, 30, 40};
    struct Case {
        POINT point;
        BOOL inside;
    };
    constexpr Case kCases[] = {{{10, 20}, TRUE},  {{29, 39}, TRUE}, {{30, 39}, FALSE},
                               {{29, 40}, FALSE}, {{9, 20}, FALSE}, {{10, 19}, FALSE}};
    for (const Case& row : kCases)
        EXPECT_EQ(PtInRect(&rectangle, row.point), row.inside) << row.point.x << " " << row.point.y;
    EXPECT_FALSE(PtInRect(nullptr, {0, 0}));
}

TEST(Rectangles, IntersectionAndUnion) {
    struct Case {
        RECT a, b, common, both;
    };
    constexpr Case kCases[] = {
        {{0, 0, 10, 10}, {5, 5, 20, 20}, {5, 5, 10, 10}, {0, 0, 20, 20}},
        {{0, 0, 10, 10}, {10, 0, 20, 10}, {0, 0, 0, 0}, {0, 0, 20, 10}},
        {{0, 0, 10, 10}, {5, 5, 5, 9}, {0, 0, 0, 0}, {0, 0, 10, 10}},
        {{3, 3, 3, 3}, {1, 2, 3, 4}, {0, 0, 0, 0}, {1, 2, 3, 4}},
        {{3, 3, 3, 3}, {9, 2, 3, 4}, {0, 0, 0, 0}, {0, 0, 0, 0}},
    };
    for (const Case& row : kCases) {
        RECT result{};
        EXPECT_EQ(IntersectRect(&result, &row.a, &row.b), !IsRectEmpty(&row.common));
        EXPECT_TRUE(Equal(result, row.common));
        EXPECT_EQ(UnionRect(&result, &row.a, &row.b), !IsRectEmpty(&row.both));
        EXPECT_TRUE(Equal(result, row.both));
    }
}

}  // namespace
