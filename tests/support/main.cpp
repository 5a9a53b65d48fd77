#include <gtest/gtest.h>

#include <clocale>

// In the user's locale, so that one with a decimal comma shows what would write or read numbers by it.
int main(int argumentCount, char** arguments)
{
    std::setlocale(LC_NUMERIC, "");
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
