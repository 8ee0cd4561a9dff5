#include <mutex>
#include <qv/measures/BUnitSystem.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>

QV_REGISTER_CLASSNAME(BUnitSystem);

namespace {

bool IsClass(EUnitClass unitClass) {
    return unitClass >= UnitClassNone && unitClass < BUnitSystem::kClassCount;
}

// The slot is meant to be filled at start-up on one thread; the lock only makes two first
// calls of Instance on different threads agree on one object instead of racing.
std::mutex slotMutex;
SP<BUnitSystem> slot;

} // namespace

BUnitSystem::BUnitSystem() {
    ChangeUnit(UnitMillimetre);
    ChangeUnit(UnitClassTemperature, u"°C", 1.0, 1);
    ChangeUnit(UnitClassAngle, u"°", 1.0, 2);
}

BUnitSystem::BUnitSystem(BUnitSystem const& other) : BSmartObj(other) {
    *this = other;
}

BUnitSystem::BUnitSystem(BUnitSystem&& other) : BSmartObj(other) {
    *this = other;
}

BUnitSystem& BUnitSystem::operator=(BUnitSystem const& other) {
    for (int i = 0; i < kClassCount; ++i)
        m_units[i] = other.m_units[i];
    return *this;
}

BUnitSystem& BUnitSystem::operator=(BUnitSystem&& other) {
    return *this = other;
}

BUnit const& BUnitSystem::Unit(EUnitClass unitClass) const {
    return m_units[IsClass(unitClass) ? unitClass : UnitClassNone];
}

void BUnitSystem::ChangeUnit(EUnit unit) {
    switch (unit) {
    case UnitMillimetre:
        ChangeUnit(UnitClassLength, u"mm", 1.0, 3);
        ChangeUnit(UnitClassArea, u"mm²", 1.0, 3);
        ChangeUnit(UnitClassVolume, u"mm³", 1.0, 3);
        break;
    case UnitInch:
        ChangeUnit(UnitClassLength, u"\"", 1.0 / 25.4, 4);
        break;
    case UnitThou:
        ChangeUnit(UnitClassLength, u"Thou", 1000.0 / 25.4, 1);
        break;
    case UnitDegree:
        ChangeUnit(UnitClassAngle, u"°", 1.0, 2);
        break;
    }
}

void BUnitSystem::ChangeUnit(EUnitClass unitClass, WString symbol, double factor, int precision) {
    if (!IsClass(unitClass))
        return;
    // In place: references handed out by Unit see the new unit.
    m_units[unitClass] = BUnit(std::move(symbol), factor, precision);
    QVPost(MSG_UNIT_CHANGED, static_cast<unsigned long long>(unitClass), 0);
}

SP<BUnitSystem> BUnitSystem::Instance() {
    std::lock_guard lock(slotMutex);
    if (!slot)
        slot = new BUnitSystem;
    return slot;
}

void BUnitSystem::RegisterInstance(SP<BUnitSystem> units) {
    std::lock_guard lock(slotMutex);
    slot = std::move(units);
}
