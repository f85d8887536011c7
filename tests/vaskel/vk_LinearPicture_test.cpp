#include "vaskel/pixels/vk_LinearPicture.h"

#include <gtest/gtest.h>

namespace
{
constexpr int SIZE = 5, MIDDLE = 2;

vk_LinearPicture withPoint(int x, int y)
{
    vk_LinearPicture picture(SIZE, SIZE);
    picture.at(x, y) = {144, 0, 0};
    return picture;
}
} // namespace

TEST(vk_LinearPicture, APointSpreadsEvenlyToTheSquaresAroundIt)
{
    const vk_LinearPicture picture = withPoint(MIDDLE, MIDDLE);
    const float expected[SIZE][SIZE] = {
        {0, 0, 0, 0, 0}, {0, 1, 10, 1, 0}, {0, 10, 100, 10, 0}, {0, 1, 10, 1, 0}, {0, 0, 0, 0, 0}};
    for (int y = 0; y < SIZE; ++y)
        for (int x = 0; x < SIZE; ++x)
            EXPECT_NEAR(picture.blended(x, y).x, expected[y][x], 1e-4) << x << ' ' << y;
}

TEST(vk_LinearPicture, BordersNeitherDarkenNorBrightenThePicture)
{
    for (const int x : {0, MIDDLE, SIZE - 1})
        for (const int y : {0, MIDDLE, SIZE - 1}) {
            const vk_LinearPicture picture = withPoint(x, y);
            float sum = 0;
            for (int i = 0; i < SIZE * SIZE; ++i)
                sum += picture.blended(i % SIZE, i / SIZE).x;
            EXPECT_NEAR(sum, 144, 1e-3) << x << ' ' << y;
        }
}

TEST(vk_LinearPicture, OnePixelIsAPicture)
{
    vk_LinearPicture picture(1, 1);
    picture.at(0, 0) = {1, 2, 3};
    EXPECT_NEAR(picture.blended(0, 0).y, 2, 1e-6);
}
