#pragma once

/// The version of the whole project, "MAJOR.MINOR.PATCH", which all its programs tell.
const char* GetProjectVersion();
