/// \file
/// BUnitSystem: the table of current display units, one BUnit per EUnitClass, and the
/// process-wide instance that the application's views read. Every change of a unit is
/// announced by posting MSG_UNIT_CHANGED with the class as first parameter. Design notes:
/// docs/measures.md, "Units".
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/measures/BUnit.h>
#include <qv/measures/EUnit.h>
#include <qv/measures/EUnitClass.h>

class QV_EXPORT BUnitSystem : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BUnitSystem)

    /// Millimetres (precision 3) for length, area and volume, "°C" (precision 1) and "°"
    /// (precision 2); plain numbers keep no symbol, factor 1, precision 9. Posts five
    /// messages, one per class set, in the order length, area, volume, temperature, angle.
    BUnitSystem();
    /// Copies and moves copy all six units; nothing is posted.
    BUnitSystem(BUnitSystem const& other);
    BUnitSystem(BUnitSystem&& other);
    BUnitSystem& operator=(BUnitSystem const& other);
    BUnitSystem& operator=(BUnitSystem&& other);

    /// The current unit of a class, by reference: it stays valid and sees later changes. A
    /// class outside the enumeration gets the unit of plain numbers.
    BUnit const& Unit(EUnitClass unitClass) const;
    /// Sets a ready-made unit (see EUnit), posting once per class it sets. Inch and thou set
    /// length only; area and volume stay as they are. Another value changes and posts nothing.
    void ChangeUnit(EUnit unit);
    /// Sets one class's unit in place and posts MSG_UNIT_CHANGED with the class. A class
    /// outside the enumeration changes and posts nothing.
    void ChangeUnit(EUnitClass unitClass, WString symbol, double factor, int precision);

    /// The unit system in use; with none registered, a new default one (millimetres) that
    /// then stays in use. Never null. Set units up on one thread, normally the dispatcher's.
    static SP<BUnitSystem> Instance();
    /// Makes \p units the one in use, holding a reference; null empties the slot, so that the
    /// next Instance makes a new default.
    static void RegisterInstance(SP<BUnitSystem> units);

    static constexpr int kClassCount = 6;

private:
    BUnit m_units[kClassCount];
};
