#include <qv/core/files/BFile.h>
#include <qv/language/BResId.h>
#include <qv/profiles/BSensorProfile.h>

QV_REGISTER_CLASSNAME(BSensorProfile);

namespace {

// The file's vocabulary for the calibration, compared after upper-casing; made when the
// library is loaded.
WString const kKeyCorpus(u"CORPUS");
WString const kKeyFrame(u"FRAME");
WString const kKeyType(u"TYPE");
WString const kFixed(u"FIXED");
WString const kModel(u"MODEL");
WString const kObject(u"OBJECT");
WString const kSensor(u"SENSOR");
WString const kStereo(u"STEREO");

// The calibration sections are named by rows of the string table, not by literals.
constexpr unsigned int kCalibrationSection = 28484; // "CALIBRATION"
constexpr unsigned int kCameraCalibSection = 28584; // "CAMERACALIB_1"

} // namespace

BSensorProfile::BSensorProfile(WString const& path) : BIniProfile(path, WString(), false) {}

SP<BCamProfile> BSensorProfile::GetCamProfile(unsigned int index) const {
    WString section;
    section.Printf(BCamProfile::Root(), static_cast<int>(index));
    WString path = GetSubProfileEntry(section, KeySubEntry());
    if (path.IsEmpty() || !BFile::Exist(path.CStr()))
        return SP<BCamProfile>();
    SP<BCamProfile> camera = new BCamProfile(path, SectionDefault());
    if (!camera->LoadSection(SectionDefault(), nullptr))
        return SP<BCamProfile>();
    return camera;
}

WString BSensorProfile::SectionDefault() const {
    return u"Current";
}

WString BSensorProfile::Section1394() const {
    return u"1394";
}

WString BSensorProfile::KeySubEntry() const {
    return u"File";
}

bool BSensorProfile::ReadCalibration(WString const& key, WString& text) {
    SetSection(BResId(kCalibrationSection));
    if (!Read(key, text))
        return false;
    text = text.Upper();
    return true;
}

unsigned char BSensorProfile::GetCalibCorpus() {
    WString text = kModel;
    return ReadCalibration(kKeyCorpus, text) && text == kFixed ? 'f' : 'm';
}

unsigned char BSensorProfile::GetCalibFrame() {
    WString text = kObject;
    return ReadCalibration(kKeyFrame, text) && text == kSensor ? 's' : 'o';
}

unsigned char BSensorProfile::GetCalibType() {
    WString text = kStereo;
    if (ReadCalibration(kKeyType, text))
        return text == kModel ? 'm' : 's';
    // Without a stored type, a model calibration shows in the camera calibration's pixels.
    SetSection(BResId(kCameraCalibSection));
    int pixels = 0;
    return Read(u"const_xPixels", pixels, kNoMin, kNoMax) && pixels != 0 ? 'm' : 's';
}

bool BSensorProfile::SetCalibCorpus(unsigned char corpus) {
    SetSection(BResId(kCalibrationSection));
    return Write(kKeyCorpus, corpus == 'f' ? kFixed : kModel);
}

bool BSensorProfile::SetCalibFrame(unsigned char frame) {
    SetSection(BResId(kCalibrationSection));
    return Write(kKeyFrame, frame == 's' ? kSensor : kObject);
}

bool BSensorProfile::SetCalibType(unsigned char type) {
    WString text = type == 'm' ? kModel : kStereo;
    SetSection(BResId(kCalibrationSection));
    WString stored;
    if (Read(kKeyType, stored) && stored.IEqual(text))
        return true;
    return Write(kKeyType, text);
}
