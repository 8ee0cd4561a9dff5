/// \file
/// EUnitClass: the kinds of quantity that have a display unit, used as the index of the
/// BUnitSystem table.
#pragma once

enum EUnitClass {
    UnitClassNone = 0,        ///< plain numbers: no symbol, factor 1, precision 9
    UnitClassLength = 1,      ///< held in millimetres
    UnitClassArea = 2,        ///< held in square millimetres
    UnitClassVolume = 3,      ///< held in cubic millimetres
    UnitClassTemperature = 4, ///< held in degrees Celsius
    UnitClassAngle = 5,       ///< held in degrees
};
