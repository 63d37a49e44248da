#include <gtest/gtest.h>

#include "library/patterns/Tacter.h"

TEST(Tacter, TextToMaskReadsOnlyExactSixteenCharacters) {
    EXPECT_EQ(Tacter::tacts("1-------1-1-----"), 0x80A0);
    EXPECT_EQ(Tacter::tacts("----------------"), 0);
    EXPECT_EQ(Tacter::tacts("1-------1-1----"), 0);    // 15 characters
    EXPECT_EQ(Tacter::tacts("1-------1-1------"), 0);  // 17 characters
    EXPECT_EQ(Tacter::tacts("1abcdefghijklmno"), 0x8000);
    EXPECT_EQ(Tacter::tacts("--------------11"), 0x0003);
}

TEST(Tacter, PrintBinaryGivesTheGeneratorLiteral) {
    EXPECT_EQ(Tacter::printBinary(0), "@\"----------------\"");
    EXPECT_EQ(Tacter::printBinary(0x80A0), "@\"1-------1-1-----\"");
    EXPECT_EQ(Tacter::printBinary(1), "@\"---------------1\"");
    EXPECT_EQ(Tacter::printBinary(0x1FFFF), "@\"11111111111111111\"");  // callers pass 16 bits only
    for (uint32_t m : {0x0001u, 0x8000u, 0x1234u, 0xFFFFu}) {
        std::string lit = Tacter::printBinary(m);
        EXPECT_EQ(Tacter::tacts(lit.substr(2, 16)), m);
    }
}

TEST(Tacter, SelectAndDeselectSteps) {
    EXPECT_EQ(Tacter::selectTact(0, 0), 0x8000);
    EXPECT_EQ(Tacter::selectTact(15, 0), 0x0001);
    EXPECT_EQ(Tacter::selectTact(16, 0x1234), 0x1234);
    EXPECT_EQ(Tacter::deselectTact(0, 0xFFFF), 0x7FFF);
    EXPECT_EQ(Tacter::deselectTact(99, 0xABCD), 0xABCD);
}
