// The simulated modem's dispatcher thread: every callback into the library
// runs here, one at a time, as with the real modem IPC library.
#include <condition_variable>
#include <deque>
#include <thread>

#include "core.h"

namespace mipc_sim {
namespace {

class Dispatcher {
   public:
    Dispatcher() : thread_([this] { run(); }) {}
    ~Dispatcher() {
        {
            std::lock_guard<std::mutex> guard(lock_);
            stopping_ = true;
        }
        wake_.notify_all();
        thread_.join();
    }

    void post(std::function<void()> work) {
        {
            std::lock_guard<std::mutex> guard(lock_);
            queue_.push_back(std::move(work));
        }
        wake_.notify_all();
    }

    void drain() {
        if (on_dispatcher()) return;  // a callback waiting for itself would never return
        std::unique_lock<std::mutex> guard(lock_);
        idle_.wait(guard, [this] { return queue_.empty() && !busy_; });
    }

    bool on_dispatcher() const { return std::this_thread::get_id() == thread_.get_id(); }

   private:
    void run() {
        std::unique_lock<std::mutex> guard(lock_);
        for (;;) {
            wake_.wait(guard, [this] { return stopping_ || !queue_.empty(); });
            if (queue_.empty()) return;
            std::function<void()> work = std::move(queue_.front());
            queue_.pop_front();
            busy_ = true;
            guard.unlock();
            work();
            guard.lock();
            busy_ = false;
            if (queue_.empty()) idle_.notify_all();
        }
    }

    std::mutex lock_;
    std::condition_variable wake_;
    std::condition_variable idle_;
    std::deque<std::function<void()>> queue_;
    bool busy_ = false;
    bool stopping_ = false;
    std::thread thread_;
};

Dispatcher &dispatcher() {
    static Dispatcher instance;
    return instance;
}

}  // namespace

void post(std::function<void()> work) {
    dispatcher().post(std::move(work));
}

void drain() {
    dispatcher().drain();
}

namespace core {
bool on_dispatcher_thread() {
    return dispatcher().on_dispatcher();
}
}  // namespace core

}  // namespace mipc_sim
