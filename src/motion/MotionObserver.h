#pragma once

// Told when a move is handed over and, in a dry run, when it is over. For recordings and tests; none on the machine.
class CMotionObserver
{
public:
    virtual ~CMotionObserver() = default;
    // Behind the preparation of the move, on the thread that commands it. The axis's own targets and counts stand.
    virtual void OnAxisMove(int iAxis) = 0;
    virtual void OnCoordinatedMove() = 0;
    // Dry run only. iAxis below 0: the coordinated move.
    virtual void OnMoveEnd(int iAxis) = 0;

    static CMotionObserver* Get() { return m_pCurrent; }
    static void Set(CMotionObserver* pObserver) { m_pCurrent = pObserver; }   // while nothing moves

private:
    static inline CMotionObserver* m_pCurrent = nullptr;
};
