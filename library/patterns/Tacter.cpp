#include "library/patterns/Tacter.h"

#include <cstdlib>

#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "library/util/Log.h"

uint16_t Tacter::tacts(const std::string& text) {
    if (text.size() != 16) return 0;
    uint32_t mask = 0;
    for (int i = 15; i >= 0; --i) {
        if (text[static_cast<size_t>(i)] == '1') mask |= 1u << (15 - i);
    }
    return static_cast<uint16_t>(mask & 0xFFFF);
}

std::string Tacter::printBinary(uint64_t mask) {
    std::string digits;
    for (uint64_t v = mask; v != 0; v >>= 1) digits.insert(digits.begin(), (v & 1) ? '1' : '-');
    while (digits.size() < 16) digits.insert(digits.begin(), '-');
    return "@\"" + digits + "\"";
}

uint16_t Tacter::selectTact(uint32_t step, uint16_t mask) {
    if (step > 15) return mask;
    return static_cast<uint16_t>((mask | (1u << (15 - step))) & 0xFFFF);
}

uint16_t Tacter::deselectTact(uint32_t step, uint16_t mask) {
    if (step > 15) return mask;
    return static_cast<uint16_t>(mask & ~(1u << (15 - step)) & 0xFFFF);
}

namespace {
// A track loop always owns at least one block; one without is a programming
// error, reported as loudly as an out-of-range access would be.
void requireBlocks(const TrackLoop* t) {
    if (!t || t->squares().empty()) {
        qlogFatal("Tacter: track loop without square blocks");
        std::abort();
    }
}
}  // namespace

bool Tacter::isSquareSelected(uint64_t square, const TrackLoop* trackLoop) {
    requireBlocks(trackLoop);
    uint64_t capacity = 16 * trackLoop->squares().size();
    if (square > capacity - 1) return false;
    uint16_t mask = trackLoop->squares()[square / 16]->squaresMask();
    return (mask >> (15 - square % 16)) & 1;
}

void Tacter::setSquare(uint64_t square, TrackLoop* trackLoop, bool selected) {
    requireBlocks(trackLoop);
    uint64_t capacity = 16 * trackLoop->squares().size();
    if (square > capacity - 1) {
        std::vector<LoopSquares*> blocks = trackLoop->squares();
        while (16 * blocks.size() - 1 < square) blocks.push_back(CoreDater::shIns().loopSqrsWithSquares(notacts()));
        trackLoop->setSquares(blocks);
    }
    LoopSquares* block = trackLoop->squares()[square / 16];
    uint32_t step = static_cast<uint32_t>(square % 16);
    block->setSquaresMask(selected ? selectTact(step, block->squaresMask()) : deselectTact(step, block->squaresMask()));
    CoreDater::shIns().save();
}
