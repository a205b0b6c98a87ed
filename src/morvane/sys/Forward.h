#pragma once
// Forward declarations of the sys layer, for headers that only pass these types on.

namespace morvane::sys {

class App;
class Clock;
class Files;
class Log;
class Queue;
class RunLoop;
class Settings;
class Timer;
struct FetchOptions;
struct FetchResult;

// A moment as the kit sees it: seconds since 1970-01-01 00:00:00 UTC.
using Date = double;

} // namespace morvane::sys
