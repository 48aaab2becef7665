#pragma once
#include <atomic>

// A scalar that crosses threads, of exactly the stated width: it reads and writes like the plain variable.
// Assignment releases and reading acquires, so that what was written before a flag is seen behind it.
// There is no ++ and no +=: a locked instruction has no place in a pulse loop. The one writer loads, adds, stores.
template <class T> class CShared
{
public:
    constexpr CShared(T value = T()) noexcept : m_Value(value) {}
    CShared(const CShared& other) noexcept : m_Value(static_cast<T>(other)) {}
    CShared& operator=(const CShared& other) noexcept { return *this = static_cast<T>(other); }
    CShared& operator=(T value) noexcept
    {
        m_Value.store(value, std::memory_order_release);
        return *this;
    }
    operator T() const noexcept { return m_Value.load(std::memory_order_acquire); }

    // Raises a flag so that another one may be read behind it: neither side of such a pair misses the other.
    T Exchange(T value) noexcept { return m_Value.exchange(value, std::memory_order_seq_cst); }
    T Ordered() const noexcept { return m_Value.load(std::memory_order_seq_cst); }

    // For the pulse loops, where the value itself is all that counts.
    T Relaxed() const noexcept { return m_Value.load(std::memory_order_relaxed); }
    void SetRelaxed(T value) noexcept { m_Value.store(value, std::memory_order_relaxed); }

private:
    std::atomic<T> m_Value;
    static_assert(std::atomic<T>::is_always_lock_free);
};
