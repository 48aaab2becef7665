#pragma once

// Told when a move is handed over and when it is over. For recordings and tests; none on the machine.
class CMotionObserver
{
public:
    virtual ~CMotionObserver() = default;
    // Behind the preparation of the move and before its first pulse, on the thread that commands it. The axis's own
    // targets and counts stand.
    virtual void OnAxisMove(int iAxis) = 0;
    virtual void OnCoordinatedMove() = 0;
    // Behind the last pulse and before the flags fall, on the thread that made the pulses (in a dry run at the end
    // time). iAxis below 0: the coordinated move.
    virtual void OnMoveEnd(int iAxis) = 0;

    static CMotionObserver* Get() { return m_pCurrent; }
    static void Set(CMotionObserver* pObserver) { m_pCurrent = pObserver; }   // while nothing moves

private:
    static inline CMotionObserver* m_pCurrent = nullptr;
};
