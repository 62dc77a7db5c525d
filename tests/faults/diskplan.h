#pragma once

/// How a program that is started with the library diskfaults is told what its disk is to do.
namespace DiskPlan {

constexpr const char* FOLDER = "DISK_FAULTS_FOLDER";  ///< only what lies in it counts
constexpr const char* KIND = "DISK_FAULTS_KIND";
constexpr const char* AT = "DISK_FAULTS_AT";  ///< number of the call, from 1; 0: none
constexpr const char* FAULTS =
    "DISK_FAULTS_FAULTS";  ///< how many calls fail from there on; all, if not given
/// A file that gets a line for each call, "17 pwrite /path", with " !" behind it where it failed.
constexpr const char* TRACE = "DISK_FAULTS_TRACE";
constexpr const char* PORT = "DISK_FAULTS_PORT";      ///< what is sent to this port of a server counts, too
constexpr const char* VICTIM = "DISK_FAULTS_VICTIM";  ///< the process of the kind "server"
/// By how many seconds the real clock is wrong: "0,7200,-10800"; each counts for a few readings of the clock.
constexpr const char* CLOCK = "DISK_FAULTS_CLOCK";

// Kinds.
constexpr const char* COUNT = "count";
constexpr const char* KILL = "kill";      ///< the program, before the call
constexpr const char* TORN = "torn";      ///< the program, after half of a write
constexpr const char* FULL = "enospc";    ///< no room
constexpr const char* ERROR = "eio";      ///< the disk is broken
constexpr const char* SHORT = "short";    ///< a write does half of what it should
constexpr const char* SERVER = "server";  ///< the victim is stopped at once, and the program goes on

}  // namespace DiskPlan
