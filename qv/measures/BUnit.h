/// \file
/// BUnit: one display unit, a symbol, a factor and a default precision. Values are held
/// internally in millimetres, degrees Celsius and degrees; a unit converts them to what is
/// shown (display = internal × factor) and back, as numbers and as text. Design notes:
/// docs/measures.md, "Units".
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <utility>

class QV_EXPORT BUnit : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BUnit)

    /// No symbol, factor 1.0, precision 9.
    BUnit() = default;
    BUnit(WString symbol, double factor, int precision)
        : m_symbol(std::move(symbol)), m_factor(factor), m_precision(precision) {}
    BUnit(BUnit const& other) = default;
    /// Copies symbol, factor and precision.
    BUnit& operator=(BUnit const& other);

    // The virtual operations in the order of their slots, behind those of BSmartObj. A unit
    // may be read by several threads while nobody changes it.
    /// @name Internal to display value
    /// The text parsed as a number (the whole text, blanks around it allowed) and converted;
    /// 0.0 when it is no number.
    virtual double Convert(WString text) const;
    /// value × factor.
    virtual double Convert(double value) const;
    /// @name Display to internal value
    /// The text parsed and reverted; 0.0 when it is no number.
    virtual double Revert(WString text) const;
    /// value ÷ factor (an infinity or NaN for a factor of 0).
    virtual double Revert(double value) const;
    /// @name The same as text, with nine significant digits ("%.9g": 0.1, 1e+10)
    /// Text that is no number gives "0".
    virtual WString ConvertStr(WString text) const;
    virtual WString ConvertStr(double value) const;
    virtual WString RevertStr(WString text) const;
    virtual WString RevertStr(double value) const;
    /// The symbol ("mm", "°C", a double quote for inches); empty for plain numbers.
    virtual WString Symbol() const;
    /// Digits behind the point that Format gives when the caller names none.
    virtual int Precision() const;
    /// @name The display value in fixed notation, without the symbol
    /// The text parsed and formatted; text that is no number comes back unchanged.
    virtual WString Format(WString text, int precision) const;
    /// Convert(value) with \p precision digits behind the point (Precision() when negative),
    /// rounded as printf rounds. The text is cut at 127 characters.
    virtual WString Format(double value, int precision) const;

private:
    WString m_symbol;
    double m_factor = 1.0;
    int m_precision = 9;
};
