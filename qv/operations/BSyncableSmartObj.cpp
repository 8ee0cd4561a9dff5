#include <qv/operations/BSyncableSmartObj.h>

QV_REGISTER_CLASSNAME(BSyncableSmartObj);

void BSyncableSmartObj::LockR() const {
    m_mutex.lock();
}

void BSyncableSmartObj::LockW() const {
    m_mutex.lock();
}

void BSyncableSmartObj::UnlockR() const {
    m_mutex.unlock();
}

void BSyncableSmartObj::UnlockW() const {
    m_mutex.unlock();
}

bool BSyncableSmartObj::TryLockR() const {
    return m_mutex.try_lock();
}

bool BSyncableSmartObj::TryLockW() const {
    return m_mutex.try_lock();
}
