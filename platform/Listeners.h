// Listeners.h -- who wants to know: a list of functions that are told of something, in the order in which they came
#pragma once

#include "platform/Assert.h"
#include "platform/BaseTypes.h"

#include <algorithm>
#include <type_traits>
#include <vector>

template <typename Signature> class Listeners;

// A listener is a function with a context of its own, which it receives last: the pair is what Remove knows it by.
// Whoever is being told may remove itself or others, add others, and tell again: one that is removed is called no more,
// one that is added is called from the next time on. All on the thread that owns the list; Tell allocates nothing.
template <typename Result, typename... Arguments> class Listeners<Result(Arguments...)> {
  public:
    using Fn = Result (*)(Arguments..., void *pvContext);

    void Add(Fn pfn, void *pvContext = nullptr)
    {
        VD_ASSERT(pfn);
        asListener.push_back({pfn, pvContext});
    }

    // Nothing for a pair that is not there.
    void Remove(Fn pfn, void *pvContext = nullptr)
    {
        for (Listener &listener : asListener)
            if (listener.pfn == pfn && listener.pvContext == pvContext)
                listener.pfn = nullptr;
        Sweep();
    }

    // The results joined by "or", where there are any.
    Result Tell(Arguments... arguments)
    {
        const size_t nBefore = asListener.size();
        Nesting nesting(this);
        if constexpr (std::is_void_v<Result>) {
            for (size_t i = 0; i < nBefore; i++)
                if (const Listener listener = asListener[i]; listener.pfn)
                    listener.pfn(arguments..., listener.pvContext);
        } else {
            Result result = {};
            for (size_t i = 0; i < nBefore; i++)
                if (const Listener listener = asListener[i]; listener.pfn)
                    result |= listener.pfn(arguments..., listener.pvContext);
            return result;
        }
    }

    bool IsEmpty() const
    {
        return std::none_of(asListener.begin(), asListener.end(), [](const Listener &l) { return l.pfn != nullptr; });
    }

  private:
    struct Listener {
        Fn pfn; // null: removed while somebody was being told
        void *pvContext;
    };

    struct Nesting {
        explicit Nesting(Listeners *p) : pOwner(p)
        {
            pOwner->nTelling++;
        }
        ~Nesting()
        {
            pOwner->nTelling--;
            pOwner->Sweep();
        }
        Listeners *pOwner;
    };

    // Places stay as they are while somebody counts on them.
    void Sweep()
    {
        if (!nTelling)
            std::erase_if(asListener, [](const Listener &l) { return !l.pfn; });
    }

    std::vector<Listener> asListener;
    u32 nTelling = 0;
};
