#include "devserver/tds/packet_channel.h"

namespace devsql::tds {

namespace {

constexpr std::size_t kMuch = std::size_t{1024} * 1024;
constexpr std::chrono::milliseconds kMoment{50};

} // namespace

void PacketChannel::Put(const std::string& bytes) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || bytes_.size() < kMuch; });
    if (!closed_) {
        bytes_ += bytes;
        changed_.notify_all();
    }
}

void PacketChannel::End(State state) {
    const std::lock_guard lock(mutex_);
    state_ = state;
    changed_.notify_all();
}

PacketChannel::State PacketChannel::Take(std::string& bytes) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kMoment, [this] { return !bytes_.empty() || state_ != State::Open; });
    bytes += bytes_;
    bytes_.clear();
    changed_.notify_all();
    return state_;
}

PacketChannel::State PacketChannel::Drain() {
    Close();
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kMoment, [this] { return state_ != State::Open; });
    return state_;
}

void PacketChannel::Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    bytes_.clear();
    changed_.notify_all();
}

} // namespace devsql::tds
