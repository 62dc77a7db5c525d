#include "archive/setuptext.h"

#include <nlohmann/json.hpp>

#include "platform/rvmdb/matrixtext.h"

namespace {

using Json = nlohmann::ordered_json;

std::string Dump(const Json& rJson) {
    // Names come from outside: what is no UTF-8 in them has marks in its place.
    return rJson.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Of each kind of record its fields by their names in texts, once for writing and reading. Field takes a name
// and the value, to write it or to set it.

template <typename Screw, typename Visit>
void VisitTableScrew(Screw& rScrew, Visit Field) {
    Field("name", rScrew.m_Name);
    Field("grams", rScrew.m_Grams);
}

template <typename Screw, typename Visit>
void VisitFittedScrew(Screw& rScrew, Visit Field) {
    Field("hole", rScrew.m_Hole);
    Field("grams", rScrew.m_Grams);
}

template <typename Plane, typename Visit>
void VisitPlane(Plane& rPlane, Visit Field) {
    Field("screws", rPlane.m_bScrews);
    Field("scale_cw", rPlane.m_bScaleClockwise);
    if (rPlane.m_bScrews) {
        Field("holes", rPlane.m_nHoles);
        Field("count", rPlane.m_nScrews);
        Field("reference_weight", rPlane.m_ReferenceWeight);
        Field("table", rPlane.m_TableName);
    }
}

template <typename Iso, typename Visit>
void VisitIso(Iso& rIso, Visit Field) {
    Field("rotor_mass", rIso.m_RotorMass);
    Field("service_speed", rIso.m_ServiceSpeed);
    Field("grade", rIso.m_Grade);
    Field("unit", rIso.m_Unit);
    Field("distance", rIso.m_Distance);
}

template <typename Setup, typename Visit>
void VisitSetup(Setup& rSetup, Visit Field) {
    Field("configuration", rSetup.m_Configuration);
    Field("mode", rSetup.m_Mode);
    Field("clockwise", rSetup.m_bClockwise);
    Field("rpm_tolerance", rSetup.m_RpmTolerance);
    Field("target", rSetup.m_TargetUnbalance);
    Field("samples", rSetup.m_nSamples);
    Field("properties", rSetup.m_Properties);
}

auto MakeWriter(Json& rJson) {
    return [&rJson](const char* pName, const auto& rValue) { rJson[pName] = rValue; };
}

/// What the text lacks stays as it is.
auto MakeReader(const Json& rJson) {
    return [&rJson](const char* pName, auto& rValue) {
        if (const auto Found = rJson.find(pName); Found != rJson.end()) {
            Found->get_to(rValue);
        }
    };
}

Json PlaneToJson(const CPlaneSetup& rPlane) {
    Json Plane;
    VisitPlane(rPlane, MakeWriter(Plane));
    if (rPlane.m_bScrews) {
        Plane["table_screws"] = Json::array();
        for (const CTableScrew& rScrew : rPlane.m_Table) {
            VisitTableScrew(rScrew, MakeWriter(Plane["table_screws"].emplace_back()));
        }
    }
    return Plane;
}

CPlaneSetup PlaneFromJson(const Json& rJson) {
    CPlaneSetup Plane;
    VisitPlane(Plane, MakeReader(rJson));
    for (const Json& rScrew : rJson.value("table_screws", Json::array())) {
        VisitTableScrew(Plane.m_Table.emplace_back(), MakeReader(rScrew));
    }
    return Plane;
}

math::matrix<double> ToMatrix(const Json& rJson) {
    // A text that is none is an error like any other of the form.
    return PreBalDB::MatrixFromText(rJson.get<std::string>()).value();
}

CRunSetup SetupFromJson(const Json& rJson) {
    CRunSetup Setup;
    VisitSetup(Setup, MakeReader(rJson));
    VisitIso(Setup.m_Iso, MakeReader(rJson.at("iso")));
    for (std::size_t Plane = 0; Plane < Setup.m_Planes.size(); ++Plane) {
        if (const Json& rPlane = rJson.at("planes").at(Plane); !rPlane.is_null()) {
            Setup.m_Planes.at(Plane) = PlaneFromJson(rPlane);
        }
    }
    Setup.m_InvA = ToMatrix(rJson.at("inv_a"));
    for (const Json& rUA : rJson.at("ua")) {
        Setup.m_UA.push_back(ToMatrix(rUA));
    }
    return Setup;
}

/// The value that From makes of the text, nothing if it isn't of the form.
template <typename Maker>
auto Parse(const std::string& rText, Maker From) -> std::optional<decltype(From(Json()))> {
    try {
        return From(Json::parse(rText));
    } catch (const Json::exception&) {
        return std::nullopt;
    } catch (const std::bad_optional_access&) {
        return std::nullopt;
    }
}

}  // namespace

std::string SetupToText(const CRunSetup& rSetup) {
    Json Setup;
    VisitSetup(rSetup, MakeWriter(Setup));
    Setup["planes"] = Json::array();
    for (const std::optional<CPlaneSetup>& rPlane : rSetup.m_Planes) {
        Setup["planes"].push_back(rPlane ? PlaneToJson(*rPlane) : Json());
    }
    Setup["inv_a"] = PreBalDB::MatrixToText(rSetup.m_InvA);
    Setup["ua"] = Json::array();
    for (const math::matrix<double>& rUA : rSetup.m_UA) {
        Setup["ua"].push_back(PreBalDB::MatrixToText(rUA));
    }
    VisitIso(rSetup.m_Iso, MakeWriter(Setup["iso"]));
    return Dump(Setup);
}

std::optional<CRunSetup> SetupFromText(const std::string& rText) {
    return Parse(rText, SetupFromJson);
}

std::string FittingToText(const CPlaneFitting& rFitting) {
    Json Result = Json::object();
    if (!rFitting.m_Weights.empty()) {
        Result["weights"] = rFitting.m_Weights;
    }
    for (const CFittedScrew& rScrew : rFitting.m_Screws) {
        VisitFittedScrew(rScrew, MakeWriter(Result["screws"].emplace_back()));
    }
    return Dump(Result);
}

std::optional<CPlaneFitting> FittingFromText(const std::string& rText) {
    return Parse(rText, [](const Json& rJson) {
        CPlaneFitting Fitting;
        Fitting.m_Weights = rJson.value("weights", Fitting.m_Weights);
        for (const Json& rScrew : rJson.value("screws", Json::array())) {
            VisitFittedScrew(Fitting.m_Screws.emplace_back(), MakeReader(rScrew));
        }
        return Fitting;
    });
}
