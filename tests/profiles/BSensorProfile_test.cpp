#include "platform/FileTestSupport.h"

#include <qv/profiles/BSensorProfile.h>

namespace {

class SensorFiles : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(m_dir / "head");
        WriteBytes(m_dir / "head/sensor.ini", "[Quorvel Imaging Device 0]\r\nFile=cam0.ini\r\n"
                                              "[Quorvel Imaging Device 1]\r\nFile=cam1.ini\r\n"
                                              "[Quorvel Imaging Device 2]\r\nFile=missing.ini\r\n"
                                              "[Quorvel Imaging Device 3]\r\nFile=empty.ini\r\n"
                                              "[CALIBRATION]\r\nCORPUS=fixed\r\nFRAME=object\r\n"
                                              "[CAMERACALIB_1]\r\nconst_xPixels=1024\r\n");
        WriteBytes(m_dir / "head/cam0.ini",
                   "[Current]\r\nAPI=x y z\r\nVendor=Acme\r\nShutter=20\r\nGamma=1.5\r\n"
                   "Serial.Number=-5\r\n");
        WriteBytes(m_dir / "head/cam1.ini", "[Current]\r\nName=right\r\n");
        WriteBytes(m_dir / "head/empty.ini", "[Other]\r\nName=x\r\n");
    }
    WString Path(char const* name) const { return WString(m_dir.U(name).c_str()); }
    TempDir m_dir;
};

// Corpus, frame and type, in that order.
std::string Calib(BSensorProfile& sensor) {
    return {char(sensor.GetCalibCorpus()), char(sensor.GetCalibFrame()),
            char(sensor.GetCalibType())};
}

TEST_F(SensorFiles, CamerasAreFoundNextToTheSensorFile) {
    BSensorProfile sensor(Path("head/sensor.ini"));
    SP<BCamProfile> left = sensor.GetCamProfile(0);
    SP<BCamProfile> right = sensor.GetCamProfile(1);
    ASSERT_TRUE(left && right);
    WString name;
    EXPECT_TRUE(right->ReadName(name) && name == WString(u"right"));
    EXPECT_FALSE(sensor.GetCamProfile(2)); // the file is not there
    EXPECT_FALSE(sensor.GetCamProfile(3)); // no "Current" section
    EXPECT_FALSE(sensor.GetCamProfile(4)); // no section at all
}

TEST_F(SensorFiles, CalibrationStateAndItsFallbacks) {
    BSensorProfile sensor(Path("head/sensor.ini"));
    // Corpus, frame and type in lower case; no TYPE: the camera calibration's pixels say 'm'.
    EXPECT_EQ(Calib(sensor), "fom");
    EXPECT_EQ(sensor.GetSection(), WString(u"CAMERACALIB_1"));

    EXPECT_TRUE(sensor.SetStereo());
    EXPECT_EQ(sensor.GetCalibType(), 's');
    sensor.WriteString(u"TYPE", u"stereo");
    std::string before = ReadBytes(m_dir / "head/sensor.ini");
    EXPECT_TRUE(sensor.SetCalibType('x')); // the same type in another case: nothing written
    EXPECT_EQ(ReadBytes(m_dir / "head/sensor.ini"), before);
    EXPECT_TRUE(sensor.SetCorpusFixed()); // the corpus is always written
    EXPECT_NE(ReadBytes(m_dir / "head/sensor.ini"), before);

    BSensorProfile bare(Path("head/cam1.ini"));
    EXPECT_EQ(Calib(bare), "mos");
}

TEST_F(SensorFiles, CameraWritesLeaveTheFileAloneWhenNothingChanged) {
    SP<BCamProfile> camera = BSensorProfile(Path("head/sensor.ini")).GetCamProfile(0);
    ASSERT_TRUE(camera);
    std::string const original = ReadBytes(m_dir / "head/cam0.ini");
    auto stamp = std::filesystem::last_write_time(m_dir / "head/cam0.ini");
    struct Row {
        char const* name;
        bool (*write)(BCamProfile&);
    } const unchanged[] = {
        {"same shutter", [](BCamProfile& c) { return c.WriteShutter(20); }},
        {"vendor in other case", [](BCamProfile& c) { return c.WriteVendor(u"ACME"); }},
        {"same gamma", [](BCamProfile& c) { return c.WriteGamma(1.5f); }},
        {"empty text over a missing key", [](BCamProfile& c) { return c.WriteName(u""); }},
    };
    for (Row const& row : unchanged) {
        EXPECT_TRUE(row.write(*camera)) << row.name;
        EXPECT_EQ(ReadBytes(m_dir / "head/cam0.ini"), original) << row.name;
    }
    EXPECT_EQ(std::filesystem::last_write_time(m_dir / "head/cam0.ini"), stamp);
}

TEST_F(SensorFiles, CameraReads) {
    BCamProfile camera(Path("head/cam0.ini"), u"Current");
    WString api, serialText;
    unsigned long serial = 77;
    EXPECT_TRUE(camera.ReadApi(api) && camera.IsApi(u"XYZ") && camera.ReadSerialNumber(serialText));
    EXPECT_FALSE(camera.ReadSerialNumber(serial)) << "a negative serial number is no number";
    EXPECT_EQ((api + u"|" + serialText).ToUtf8() + "|" + std::to_string(serial), "xyz|-5|77");
    camera.SetSection(u"Elsewhere");
    EXPECT_TRUE(camera.GoToRoot());
    EXPECT_EQ(camera.GetSection(), WString(u"Current"));
}

} // namespace
