#include <algorithm>
#include <stdexcept>

#include "tests/pictures/scene.h"

namespace {

using Method = CPlaneBalancingMethod;
constexpr auto COUNTER_CLOCKWISE = PreBalDB::CTypeBase::eCounterClockwise;

// Instructions and warnings by number, as they appear below.
constexpr unsigned TERMINATE = 0;
constexpr unsigned NEUTRAL = 3;
constexpr unsigned RUN_AT_DESIRED_RPM = 5;
constexpr unsigned MEASURING = 6;
constexpr unsigned SET_AS_SHOWN = 7;
constexpr unsigned MAP_TO_DISPLAY = 9;
constexpr unsigned WRONG_RPM = 2;
constexpr unsigned OUT_OF_LOCK = 3;
constexpr unsigned CAPACITY = 6;
constexpr unsigned NO_REBALANCE = 7;
constexpr unsigned OVER_LIMIT = 8;

CPlaneScene Weights(int Angle1, int Angle2) {
    CPlaneScene Plane;
    Plane.m_Angle1 = Angle1;
    Plane.m_Angle2 = Angle2;
    return Plane;
}

CPlaneScene Screws(int NumberOfHoles, std::vector<CScrew> Screws) {
    CPlaneScene Plane;
    Plane.m_Means = CPlaneScene::eScrews;
    Plane.m_NumberOfHoles = NumberOfHoles;
    Plane.m_Screws = std::move(Screws);
    return Plane;
}

CPlaneScene In(Method::DisplayMode Mode, CPlaneScene Plane) {
    Plane.m_Mode = Mode;
    return Plane;
}

/// Live values; State by CPlaneBalancingMethod::MeasurementDisplayState.
CPlaneScene Live(CPlaneScene Plane, double Magnitude, double Angle, double LastMagnitude,
                 int State = Method::eNormal) {
    Plane.m_Mode = Method::eMeasurementValues;
    Plane.m_Magnitude = Magnitude;
    Plane.m_Angle = Angle;
    Plane.m_LastMagnitude = LastMagnitude;
    Plane.m_State = State;
    return Plane;
}

CPlaneScene OnScale(PreBalDB::CTypeBase::Direction Scaling, CPlaneScene Plane) {
    Plane.m_Scaling = Scaling;
    return Plane;
}

CPlaneScene Turning(PreBalDB::CTypeBase::Direction Rotation, CPlaneScene Plane) {
    Plane.m_Rotation = Rotation;
    return Plane;
}

CScene Page(std::string Name, std::string Caption, std::vector<CPlaneScene> Planes,
            unsigned Instruction = SET_AS_SHOWN) {
    CScene Scene;
    Scene.m_Name = std::move(Name);
    Scene.m_Caption = std::move(Caption);
    Scene.m_Planes = std::move(Planes);
    Scene.m_Instruction = Instruction;
    return Scene;
}

CScene MeasuringPage(std::string Name, std::string Caption, std::vector<CPlaneScene> Planes) {
    CScene Scene = Page(std::move(Name), std::move(Caption), std::move(Planes), MEASURING);
    Scene.m_CurrentRPM = 3000;
    return Scene;
}

CScene InGallery(CScene Scene) {
    Scene.m_bGallery = true;
    return Scene;
}

CScene Sized(int Width, int Height, CScene Scene) {
    Scene.m_Size = {Width, Height};
    return Scene;
}

CScene Warned(unsigned Warning, CScene Scene, double Percent = 0.0) {
    Scene.m_Warning = Warning;
    Scene.m_Percent = Percent;
    return Scene;
}

CScene Colored(CScene Scene) {
    Scene.m_bColorize = true;
    return Scene;
}

CScene German(CScene Scene) {
    Scene.m_Language = "de";
    return Scene;
}

const std::vector<CScrew>& ThreeScrews() {
    static const std::vector<CScrew> s_Screws{{2, 2.5, ""}, {6, 250.0, ""}, {11, 4.2, "M6x12"}};
    return s_Screws;
}

void AddModes(std::vector<CScene>& rScenes) {
    const auto Add = [&rScenes](CScene Scene) { rScenes.push_back(std::move(Scene)); };
    Add(Warned(OUT_OF_LOCK, Page("empty", "Nothing to show of the plane",
                                 {In(Method::eEmpty, Weights(40, 155))}, TERMINATE)));
    Add(InGallery(Page("weights-neutral", "Weights opposite each other: neutral position",
                       {In(Method::eNeutralPosition, Weights(0, 180))}, NEUTRAL)));
    Add(Page("weights-inactive", "A plane at which nothing is to be done",
             {In(Method::eInactive, Weights(40, 155))}, RUN_AT_DESIRED_RPM));
    Add(InGallery(Page("weights-test", "The test position: one weight has been moved",
                       {In(Method::eTestUnbalance, Weights(30, 180))})));
    Add(InGallery(Page("weights-correction", "Where the weights have to go",
                       {In(Method::eUACompensation, Weights(222, 274))})));
    Add(InGallery(MeasuringPage("weights-measuring", "Measuring: average, latest reading as a bar, angle",
                                {Live(Weights(0, 180), 123.0, 61.0, 118.0)})));
    Add(InGallery(Page("weights-scale-counter-clockwise",
                       "The same weights on a scale that counts counter-clockwise",
                       {OnScale(COUNTER_CLOCKWISE, Turning(COUNTER_CLOCKWISE, Weights(222, 274)))})));
    Add(InGallery(Page("weights-equal-angles", "Both weights belong at the same place: drawn side by side",
                       {Weights(50, 50)}, MAP_TO_DISPLAY)));
    Add(Page("weights-equal-angles-counter-clockwise", "The same on a scale that counts counter-clockwise",
             {OnScale(COUNTER_CLOCKWISE, Weights(355, 355))}, MAP_TO_DISPLAY));

    Add(Page("screws-neutral", "A ring of holes without screws",
             {In(Method::eNeutralPosition, Screws(12, {}))}, NEUTRAL));
    Add(Page("screws-inactive", "Holes at which nothing is to be done",
             {In(Method::eInactive, Screws(12, ThreeScrews()))}, RUN_AT_DESIRED_RPM));
    Add(InGallery(Page("screws-test", "The test screw",
                       {In(Method::eTestUnbalance, Screws(12, {{1, 4.2, "M6x12"}}))})));
    Add(InGallery(
        Page("screws-correction", "Which screws belong into which holes", {Screws(12, ThreeScrews())})));
    Add(MeasuringPage("screws-measuring", "Measuring with screws",
                      {Live(Screws(12, ThreeScrews()), 87.0, 211.0, 90.0)}));
    Add(Page("screws-counter-clockwise", "The same screws in holes that count counter-clockwise",
             {OnScale(COUNTER_CLOCKWISE, Turning(COUNTER_CLOCKWISE, Screws(12, ThreeScrews())))}));
}

void AddHoles(std::vector<CScene>& rScenes) {
    const std::vector<CScrew> Three{{1, 12.5, ""}, {3, 7.25, "M8"}};
    rScenes.push_back(Page("holes-3", "Three holes", {Screws(3, Three)}));
    const std::vector<CScrew> Many{{1, 12.5, ""}, {2, 7.25, "M8x16"}, {24, 99.99, ""}};
    rScenes.push_back(
        InGallery(Page("holes-24", "Twenty-four holes, neighbours among the screws", {Screws(24, Many)})));
    rScenes.push_back(
        Page("holes-25", "From 25 holes on, only those with screws are drawn", {Screws(25, Many)}));
    rScenes.push_back(Page("screws-long-names", "Long names are shortened in their middle",
                           {Screws(12, {{1, 2.5, "M6x12-A2-70"},
                                        {4, 4.2, "ISO 4762 M6x12-12.9 zinc"},
                                        {9, 4.2, "ISO 4762 M6x12-8.8 zinc"}})}));
    // In every direction, to see the texts along the radius.
    std::vector<CScrew> All;
    for (std::uint16_t nHole = 1; nHole <= 24; ++nHole) {
        All.push_back({nHole, nHole * 1.25, nHole % 3 == 0 ? "M" + std::to_string(nHole) + "x10" : ""});
    }
    rScenes.push_back(Page("holes-all", "Texts along the radius in every direction", {Screws(24, All)}));
}

void AddValues(std::vector<CScene>& rScenes) {
    const auto States = [](int First, int Second) {
        return std::vector{Live(Weights(40, 155), 12.0, 305.0, 14.0, First),
                           Live(Screws(12, ThreeScrews()), 48.0, 17.0, 44.0, Second)};
    };
    const std::vector Running = States(Method::eNormal, Method::eNotValid);
    const std::vector Final = States(Method::eWithinTarget, Method::eOverTarget);
    const auto Add = [&rScenes](CScene Scene) { rScenes.push_back(std::move(Scene)); };
    Add(MeasuringPage("values-running",
                      "A valid value, and one that isn't valid now: the last sample in grey", Running));
    Add(Colored(MeasuringPage("values-running-coloured", "The same with colours for final values", Running)));
    Add(Warned(OVER_LIMIT, MeasuringPage("values-final", "Final values within and over the target", Final)));
    Add(InGallery(Colored(
        Warned(OVER_LIMIT, MeasuringPage("values-final-coloured",
                                         "Final values within and over the target, in colours", Final)))));

    const auto Digits = [](double First, double Second) {
        return std::vector{Live(Weights(40, 155), First, 0.0, First),
                           Live(Weights(200, 290), Second, 359.4, Second)};
    };
    Add(MeasuringPage("digits-1-2", "Numbers of one and two digits", Digits(9.4, 42.0)));
    Add(MeasuringPage("digits-3-4", "Numbers of three and four digits", Digits(888.0, 2345.0)));
    Add(MeasuringPage("digits-0-5", "Zero, and a number of five digits", Digits(0.0, 46340.0)));
    Add(MeasuringPage("digits-4", "Four digits on a page of one plane", {Digits(8888.0, 0.0).front()}));
    Add(MeasuringPage("digits-5", "Five digits on a page of one plane", {Digits(10000.0, 0.0).front()}));
    Add(MeasuringPage("gauge", "The bar at the end of the fine scale, and just beyond it",
                      Digits(200.0, 200.01)));
}

void AddSizes(std::vector<CScene>& rScenes) {
    const auto Add = [&rScenes](CScene Scene) { rScenes.push_back(std::move(Scene)); };
    const CPlaneScene Plane = Weights(222, 274);
    const CPlaneScene Value = Live(Weights(222, 274), 187.0, 61.0, 204.0);
    Add(Sized(600, 503, Page("size-503", "The last height with a status line of 17 rows", {Plane})));
    Add(Sized(600, 504, Page("size-504", "From 504 on the status line grows with the page", {Plane})));
    Add(Sized(300, 700, MeasuringPage("size-narrow", "A narrow page", {Value})));
    Add(Sized(1000, 300,
              Warned(CAPACITY, Page("size-wide", "A wide page", {Screws(12, ThreeScrews())}), 12.5)));
    Add(Sized(320, 240, Page("size-small", "A small page", {Plane})));
    Add(Sized(320, 240, MeasuringPage("size-small-measuring", "A small page, measuring", {Value})));
    Add(Sized(320, 240, Page("size-small-screws", "A small page with screws", {Screws(12, ThreeScrews())})));
    Add(Sized(1920, 1080, Page("size-large", "A large page", {Screws(24, ThreeScrews())})));
    Add(Sized(1920, 1080,
              MeasuringPage("size-large-two-planes", "A large page, measuring in two planes",
                            {Value, Live(Screws(24, ThreeScrews()), 12.0, 305.0, 14.0)})));
}

void AddTwoPlanes(std::vector<CScene>& rScenes) {
    const auto Add = [&rScenes](CScene Scene) { rScenes.push_back(std::move(Scene)); };
    Add(InGallery(Page("two-planes", "Two planes, one with weights and one with screws",
                       {Weights(222, 274), Turning(COUNTER_CLOCKWISE, Screws(12, ThreeScrews()))})));
    Add(InGallery(Page("two-planes-first", "Only at plane 1 something is to be done",
                       {In(Method::eTestUnbalance, Weights(30, 180)),
                        Turning(COUNTER_CLOCKWISE, In(Method::eInactive, Weights(0, 180)))})));
    Add(Sized(320, 240,
              MeasuringPage("two-planes-small", "Two planes on a small page",
                            {Live(Weights(0, 180), 123.0, 61.0, 118.0),
                             Live(Weights(0, 180), 1234.0, 359.4, 1118.0)})));
}

void AddTexts(std::vector<CScene>& rScenes) {
    const auto Add = [&rScenes](CScene Scene) { rScenes.push_back(std::move(Scene)); };
    Add(InGallery(
        Warned(CAPACITY, Page("warning-capacity", "The weights don't suffice", {Weights(123, 123)}), 12.5)));
    Add(InGallery(
        German(Warned(CAPACITY, Page("german-capacity", "The same in German", {Weights(123, 123)}), 12.5))));
    Add(German(Warned(NO_REBALANCE, Page("german-no-rebalance", "The longest warning, in German",
                                         {Weights(0, 180)}, NEUTRAL))));
    Add(German(Sized(320, 240,
                     Warned(NO_REBALANCE, Page("german-small", "The longest texts on a small page, in German",
                                               {Weights(0, 180)}, NEUTRAL)))));
    Add(InGallery(German(
        Warned(WRONG_RPM,
               MeasuringPage("german-two-planes", "Two planes in German",
                             {Live(Weights(222, 274), 42.0, 61.0, 40.0, Method::eNotValid),
                              Live(Screws(12, ThreeScrews()), 187.0, 17.0, 204.0, Method::eNotValid)})))));
}

std::vector<CScene> MakeScenes() {
    std::vector<CScene> Scenes;
    AddModes(Scenes);
    AddHoles(Scenes);
    AddValues(Scenes);
    AddSizes(Scenes);
    AddTwoPlanes(Scenes);
    AddTexts(Scenes);
    return Scenes;
}

}  // namespace

const std::vector<CScene>& GetScenes() {
    static const std::vector<CScene> s_Scenes = MakeScenes();
    return s_Scenes;
}

const CScene& GetScene(const std::string& rName) {
    const std::vector<CScene>& rScenes = GetScenes();
    const auto Found = std::find_if(rScenes.begin(), rScenes.end(),
                                    [&rName](const CScene& rScene) { return rScene.m_Name == rName; });
    if (Found == rScenes.end()) {
        throw std::out_of_range("no scene " + rName);
    }
    return *Found;
}
