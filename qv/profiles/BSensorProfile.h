/// \file
/// BSensorProfile: the ini file that describes a measuring head as a whole: which cameras it
/// has (a section "Quorvel Imaging Device N" per camera, whose "File" names the camera's file,
/// relative names taken from the sensor file's folder) and how it was calibrated (the keys
/// "CORPUS", "FRAME" and "TYPE" in the section of string-table row 28484, "CALIBRATION").
/// The calibration getters and GetCamProfile move the current section.
///
/// Threads: one object belongs to one thread at a time.
#pragma once

#include <qv/profiles/BCamProfile.h>

class QV_EXPORT BSensorProfile : public BIniProfile {
public:
    explicit BSensorProfile(WString const& path);
    BSensorProfile(BSensorProfile const& other) = default;
    BSensorProfile& operator=(BSensorProfile const& other) = default;

    // The virtual operations added behind those of BIniProfile, in the order of their slots.

    /// A new camera profile for camera \p index, in its section "Current"; null when the
    /// sensor file names no file for it, the file is not there or its "Current" section holds
    /// no key.
    virtual SP<BCamProfile> GetCamProfile(unsigned int index) const;
    virtual WString SectionDefault() const;
    virtual WString Section1394() const;
    virtual WString KeySubEntry() const;

    /// @name Calibration state: corpus 'f' (fixed) or 'm' (model), frame 'o' (object) or 's'
    /// (sensor), type 'm' (model) or 's' (stereo). The getters cannot fail: a missing value
    /// gives 'm', 'o' and, unless "const_xPixels" of "CAMERACALIB_1" is set, 's'. A setter's
    /// argument outside its two letters counts as the second one.
    unsigned char GetCalibCorpus();
    unsigned char GetCalibFrame();
    unsigned char GetCalibType();
    bool SetCalibCorpus(unsigned char corpus);
    bool SetCalibFrame(unsigned char frame);
    /// Writes nothing when the stored type is the same in any letter case.
    bool SetCalibType(unsigned char type);
    bool SetCorpusFixed() { return SetCalibCorpus('f'); }
    bool SetCorpusModel() { return SetCalibCorpus('m'); }
    bool SetObject() { return SetCalibFrame('o'); }
    bool SetSensor() { return SetCalibFrame('s'); }
    bool SetModel() { return SetCalibType('m'); }
    bool SetStereo() { return SetCalibType('s'); }

    /// @name Keys that only callers use.
    WString KeyAvgFuzzyTxt() const { return u"AvgFuzzyTxt"; }
    WString KeyDiffIntensFringe() const { return u"DiffIntensFringe"; }
    WString KeyGrayCodeFactor() const { return u"GrayCodeFactor"; }
    WString KeyPhaseNoise() const { return u"PhaseNoise"; }
    WString KeyShakeTolerance() const { return u"ShakeTolerance"; }

protected:
    QV_DECLARE_CLASSNAME(BSensorProfile)

private:
    /// The text of a calibration key, upper-cased, when it was read.
    bool ReadCalibration(WString const& key, WString& text);
};
