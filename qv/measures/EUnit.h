/// \file
/// EUnit: the ready-made unit settings that BUnitSystem::ChangeUnit knows.
#pragma once

enum EUnit {
    UnitMillimetre = 0, ///< length "mm", area "mm²", volume "mm³"
    UnitInch = 1,       ///< length only: inches
    UnitThou = 2,       ///< length only: thousandths of an inch
    UnitDegree = 3,     ///< angle "°"
};
