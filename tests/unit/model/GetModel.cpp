// The publication of the store as a model: Get() and load() of targetspec/TargetSpec.cpp, on
// atomics that try everything that the memory model allows. Each step there is a step here, in the
// same order.

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <ostream>

// Last: it defines "delete" and other words as macros.
#include <relacy/relacy.hpp>

namespace {

// The orderings that publish the store. Each is needed: if one is relaxed, the model fails.
enum Ordering { None, FastAcquire, LockAcquire, FlagRelease, LockRelease };

struct Store {
    rl::var<int> mStatus;
};

constexpr int kLoaded = 2;  // The content of a store that has both documents.

template <int Weakened>
struct GetModel : rl::test_suite<GetModel<Weakened>, 3> {
    rl::var<Store*> mInstance;
    rl::atomic<int> mLock;
    rl::atomic<bool> mIsInitialized;
    Store mStores[3];  // One for each thread, in case several load.
    rl::var<int> mLoads;

    static rl::memory_order weaken(Ordering ordering, rl::memory_order order) {
        return ordering == Weakened ? rl::mo_relaxed : order;
    }

    void before() {
        VAR(mInstance) = nullptr;
        VAR(mLoads) = 0;
        mLock.store(0, rl::mo_relaxed, $);
        mIsInitialized.store(false, rl::mo_relaxed, $);
    }

    Store* Get(unsigned thread) {
        if (mIsInitialized.load(weaken(FastAcquire, rl::mo_acquire), $)) {
            return VAR(mInstance);
        }
        return load(thread);
    }

    Store* load(unsigned thread) {
        while (mLock.exchange(1, weaken(LockAcquire, rl::mo_acquire), $) != 0) {
            while (mLock.load(rl::mo_relaxed, $) != 0) {
                rl::yield(1, $);
            }
        }
        struct Unlock {
            GetModel& model;
            ~Unlock() { model.mLock.store(0, weaken(LockRelease, rl::mo_release), $); }
        } const unlock{*this};
        if (!mIsInitialized.load(rl::mo_acquire, $)) {
            VAR(mInstance) = &mStores[thread];
            VAR(mLoads) = VAR(mLoads) + 1;
            VAR(VAR(mInstance)->mStatus) = 1;
            VAR(VAR(mInstance)->mStatus) = kLoaded;
            mIsInitialized.store(true, weaken(FlagRelease, rl::mo_release), $);
        }
        return VAR(mInstance);
    }

    void thread(unsigned thread) {
        for (int call = 0; call < 2; ++call) {
            Store* const store = Get(thread);
            RL_ASSERT(store != nullptr && VAR(store->mStatus) == kLoaded);
        }
    }

    void after() { RL_ASSERT(VAR(mLoads) == 1); }
};

// Whether every execution that the scheduler tries is correct.
template <int Weakened>
bool holds(rl::scheduler_type_e scheduler, const char* title) {
    std::ostream silent(nullptr);
    rl::test_params parameters;
    parameters.search_type = scheduler;
    parameters.context_bound = 5;
    parameters.iteration_count = 1000000;  // Of the random scheduler; the other one ends by itself.
    parameters.output_stream = &silent;
    parameters.progress_stream = &silent;
    rl::simulate<GetModel<Weakened>>(parameters);
    const bool isRight = parameters.test_result == rl::test_result_success;
    std::printf("%-24s %-23s %9llu executions: %s\n", title, rl::format(scheduler),
                static_cast<unsigned long long>(parameters.stop_iteration),
                rl::test_result_str(parameters.test_result));
    return isRight;
}

// Whether both schedulers find nothing with the code's orderings, and a fault with any other.
template <int Weakened>
bool isAsExpected(const char* title) {
    const bool expected = Weakened == None;
    const bool whenBound = holds<Weakened>(rl::sched_bound, title);
    const bool whenRandom = holds<Weakened>(rl::sched_random, title);
    return whenBound == expected && whenRandom == expected;
}

}  // namespace

int main() {
    const bool results[] = {isAsExpected<None>("as the code is"),
                            isAsExpected<FastAcquire>("fast acquire weakened"),
                            isAsExpected<LockAcquire>("lock's acquire weakened"),
                            isAsExpected<FlagRelease>("flag's release weakened"),
                            isAsExpected<LockRelease>("lock's release weakened")};
    const bool isProved = std::count(std::begin(results), std::end(results), false) == 0;
    std::puts(isProved ? "proved" : "NOT proved");
    return isProved ? 0 : 1;
}
