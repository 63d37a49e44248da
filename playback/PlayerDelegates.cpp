#include "playback/PlayerDelegates.h"

#include <algorithm>

#include "engine/AudioController.h"

DelegateLinkBase::~DelegateLinkBase() { attach(nullptr); }

void DelegateLinkBase::attach(PlayerDelegate* delegate) {
    PlayerDelegate* old = target_.load(std::memory_order_relaxed);
    if (old == delegate) return;
    if (old) old->links_.erase(std::remove(old->links_.begin(), old->links_.end(), this), old->links_.end());
    if (delegate) delegate->links_.push_back(this);
    target_.store(delegate, std::memory_order_release);
}

PlayerDelegate::~PlayerDelegate() { stopReceivingReports(); }

void PlayerDelegate::stopReceivingReports() {
    std::vector<AudioController*> engines;
    for (DelegateLinkBase* link : links_) {
        link->target_.store(nullptr, std::memory_order_release);
        if (link->controller_ && std::find(engines.begin(), engines.end(), link->controller_) == engines.end())
            engines.push_back(link->controller_);
    }
    links_.clear();
    // A render pass that read a link before it was cleared is over once the
    // render thread has answered one exchange (passes never overlap).
    for (AudioController* engine : engines) engine->performSynchronousMessageExchangeWithBlock(nullptr);
}
