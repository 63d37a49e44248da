#include "library/model/Model.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

#include "library/store/LibraryStore.h"

namespace {
const char* const kEntityNames[kEntityCount] = {"Sound",      "SoundFolder", "Instrument",
                                                "Loop",       "LoopFolder",  "Track",
                                                "TrackFolder", "TrackLoop",  "LoopSquares"};
}

const char* entityName(Entity e) { return kEntityNames[static_cast<int>(e)]; }

bool entityFromName(const std::string& name, Entity* out) {
    for (int i = 0; i < kEntityCount; ++i) {
        if (name == kEntityNames[i]) {
            *out = static_cast<Entity>(i);
            return true;
        }
    }
    return false;
}

void ManagedObject::changed() {
    if (store_ && !deleted_) store_->noteChanged(this);
}

// Keeps both sides of every relationship in step. Ordered to-many lists keep
// each member's index in position_, which is what the store persists.
struct Relations {
    template <class C>
    static void renumber(std::vector<C*>& list, size_t from) {
        for (size_t i = from; i < list.size(); ++i) {
            if (list[i]->position_ != static_cast<int32_t>(i)) {
                list[i]->position_ = static_cast<int32_t>(i);
                list[i]->changed();
            }
        }
    }

    template <class C>
    static void removeOrdered(std::vector<C*>& list, C* child) {
        auto it = std::find(list.begin(), list.end(), child);
        if (it == list.end()) return;
        size_t at = static_cast<size_t>(it - list.begin());
        list.erase(it);
        renumber(list, at);
    }

    template <class C>
    static void removeUnordered(std::vector<C*>& list, C* child) {
        auto it = std::find(list.begin(), list.end(), child);
        if (it != list.end()) list.erase(it);
    }

    // child's to-one side of an ordered relationship; the child joins at the end.
    template <class P, class C>
    static void setOrderedOwner(C* child, P*& back, P* owner, std::vector<C*> P::*list) {
        if (back == owner) return;
        if (back) removeOrdered(back->*list, child);
        back = owner;
        if (owner) {
            (owner->*list).push_back(child);
            child->position_ = static_cast<int32_t>((owner->*list).size() - 1);
        }
        child->changed();
    }

    // The parent's side: replace the whole ordered list.
    template <class P, class C, class ListMember, class BackMember>
    static void replaceOrdered(P* owner, ListMember list, BackMember back, const std::vector<C*>& wanted) {
        std::vector<C*> next;
        next.reserve(wanted.size());
        std::unordered_set<C*> inNext;
        for (C* c : wanted) {
            if (c && inNext.insert(c).second) next.push_back(c);
        }
        for (C* c : owner->*list) {
            if (!inNext.count(c)) {
                c->*back = nullptr;
                c->changed();
            }
        }
        for (C* c : next) {
            P* old = c->*back;
            if (old != owner) {
                if (old) removeOrdered(old->*list, c);
                c->*back = owner;
                c->changed();
            }
        }
        owner->*list = std::move(next);
        renumber(owner->*list, 0);
    }

    template <class F, class C>
    static void setFolder(C* item, F*& back, F* folder) {
        if (back == folder) return;
        if (back) removeOrdered(back->items_, item);
        back = folder;
        if (folder) {
            folder->items_.push_back(item);
            item->position_ = static_cast<int32_t>(folder->items_.size() - 1);
        }
        item->changed();
    }

    template <class F>
    static void setItems(F* folder, const std::vector<typename F::ItemType*>& items) {
        using Item = typename F::ItemType;
        replaceOrdered<F, Item>(folder, &F::items_, &Item::inFolder_, items);
    }

    template <class P, class C>
    static void setReference(C* child, P*& back, P* target, std::vector<C*> P::*list) {
        if (back == target) return;
        if (back) removeUnordered(back->*list, child);
        back = target;
        if (target) (target->*list).push_back(child);
        child->changed();
    }

    template <class P, class C>
    static void orphanAll(std::vector<C*>& list, P* C::*back) {
        for (C* c : list) {
            c->*back = nullptr;
            c->changed();
        }
        list.clear();
    }

    static void detach(ManagedObject* o);

    static void instrumentInLoop(Instrument* i, Loop* l) { setOrderedOwner(i, i->inLoop_, l, &Loop::instruments_); }
    static void instrumentSound(Instrument* i, Sound* s) { setReference(i, i->sound_, s, &Sound::toInstruments_); }
    static void loopInstruments(Loop* l, const std::vector<Instrument*>& v) {
        replaceOrdered<Loop, Instrument>(l, &Loop::instruments_, &Instrument::inLoop_, v);
    }
    static void trackTrackloops(Track* t, const std::vector<TrackLoop*>& v) {
        replaceOrdered<Track, TrackLoop>(t, &Track::trackloops_, &TrackLoop::inTrack_, v);
    }
    static void trackLoopInTrack(TrackLoop* r, Track* t) { setOrderedOwner(r, r->inTrack_, t, &Track::trackloops_); }
    static void trackLoopLoop(TrackLoop* r, Loop* l) { setReference(r, r->loop_, l, &Loop::inTracks_); }
    static void trackLoopSquares(TrackLoop* r, const std::vector<LoopSquares*>& v) {
        replaceOrdered<TrackLoop, LoopSquares>(r, &TrackLoop::squares_, &LoopSquares::ofTrackLoop_, v);
    }
    static void squaresOfTrackLoop(LoopSquares* b, TrackLoop* t) {
        setOrderedOwner(b, b->ofTrackLoop_, t, &TrackLoop::squares_);
    }
};

template <class Item> struct FolderOf;
template <> struct FolderOf<Sound> { using type = SoundFolder; };
template <> struct FolderOf<Loop> { using type = LoopFolder; };
template <> struct FolderOf<Track> { using type = TrackFolder; };

template <class Item, Entity Kind>
void Folder<Item, Kind>::setItems(const std::vector<Item*>& items) {
    Relations::setItems(static_cast<typename FolderOf<Item>::type*>(this), items);
}

void Sound::setInFolder(SoundFolder* f) { Relations::setFolder(this, inFolder_, f); }
void Loop::setInFolder(LoopFolder* f) { Relations::setFolder(this, inFolder_, f); }
void Track::setInFolder(TrackFolder* f) { Relations::setFolder(this, inFolder_, f); }

void Instrument::setInLoop(Loop* l) { Relations::instrumentInLoop(this, l); }
void Instrument::setSound(Sound* s) { Relations::instrumentSound(this, s); }
void Loop::setInstruments(const std::vector<Instrument*>& v) { Relations::loopInstruments(this, v); }
void Track::setTrackloops(const std::vector<TrackLoop*>& v) { Relations::trackTrackloops(this, v); }
void TrackLoop::setInTrack(Track* t) { Relations::trackLoopInTrack(this, t); }
void TrackLoop::setLoop(Loop* l) { Relations::trackLoopLoop(this, l); }
void TrackLoop::setSquares(const std::vector<LoopSquares*>& v) { Relations::trackLoopSquares(this, v); }
void LoopSquares::setOfTrackLoop(TrackLoop* t) { Relations::squaresOfTrackLoop(this, t); }

// Deleting an object takes it out of every inverse; nothing else is deleted.
void Relations::detach(ManagedObject* o) {
    switch (o->entity()) {
    case Entity::Sound: {
        auto* s = static_cast<Sound*>(o);
        s->setInFolder(nullptr);
        orphanAll(s->toInstruments_, &Instrument::sound_);
        break;
    }
    case Entity::Instrument: {
        auto* i = static_cast<Instrument*>(o);
        i->setInLoop(nullptr);
        i->setSound(nullptr);
        break;
    }
    case Entity::Loop: {
        auto* l = static_cast<Loop*>(o);
        l->setInFolder(nullptr);
        orphanAll(l->instruments_, &Instrument::inLoop_);
        orphanAll(l->inTracks_, &TrackLoop::loop_);
        break;
    }
    case Entity::Track: {
        auto* t = static_cast<Track*>(o);
        t->setInFolder(nullptr);
        orphanAll(t->trackloops_, &TrackLoop::inTrack_);
        break;
    }
    case Entity::TrackLoop: {
        auto* t = static_cast<TrackLoop*>(o);
        t->setInTrack(nullptr);
        t->setLoop(nullptr);
        orphanAll(t->squares_, &LoopSquares::ofTrackLoop_);
        break;
    }
    case Entity::LoopSquares:
        static_cast<LoopSquares*>(o)->setOfTrackLoop(nullptr);
        break;
    case Entity::SoundFolder: {
        auto* f = static_cast<SoundFolder*>(o);
        for (Sound* s : f->items_) { s->inFolder_ = nullptr; s->changed(); }
        f->items_.clear();
        break;
    }
    case Entity::LoopFolder: {
        auto* f = static_cast<LoopFolder*>(o);
        for (Loop* s : f->items_) { s->inFolder_ = nullptr; s->changed(); }
        f->items_.clear();
        break;
    }
    case Entity::TrackFolder: {
        auto* f = static_cast<TrackFolder*>(o);
        for (Track* s : f->items_) { s->inFolder_ = nullptr; s->changed(); }
        f->items_.clear();
        break;
    }
    }
}

void detachFromInverses(ManagedObject* o) { Relations::detach(o); }

template class Folder<Sound, Entity::SoundFolder>;
template class Folder<Loop, Entity::LoopFolder>;
template class Folder<Track, Entity::TrackFolder>;
