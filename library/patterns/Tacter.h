#pragma once
// Step masks and square patterns. A mask holds sixteen steps (or squares) with
// step 0 in bit 15 and step 15 in bit 0; its text form is sixteen characters,
// "1" for on and anything else (normally "-") for off.
#include <cstdint>
#include <string>

class TrackLoop;

class Tacter {
public:
    static uint16_t tacts(const std::string& text);
    static uint16_t notacts() { return 0; }
    // The mask as a source literal of the content generator: @"1-------1-1-----".
    static std::string printBinary(uint64_t mask);
    static uint16_t selectTact(uint32_t step, uint16_t mask);
    static uint16_t deselectTact(uint32_t step, uint16_t mask);
    // Square s lives in block s / 16 at bit 15 - s % 16. Both need at least one block.
    static bool isSquareSelected(uint64_t square, const TrackLoop* trackLoop);
    // Grows the block chain as needed, changes the square and saves the store.
    static void setSquare(uint64_t square, TrackLoop* trackLoop, bool selected);
};
