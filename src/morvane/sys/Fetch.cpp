#include <morvane/sys/Fetch.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include <curl/curl.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <vector>

namespace morvane::sys {
namespace {

struct Transfer {
    std::string* body;
    std::size_t maxBytes;
    const std::function<bool()>* wanted;
    bool tooLarge = false;
    bool cancelled = false;
};

// curl calls this often while data flows and about once a second while the
// server says nothing, which is when an unwanted transfer matters most.
int progress(void* context, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    auto* transfer = static_cast<Transfer*>(context);
    if (*transfer->wanted && !(*transfer->wanted)()) {
        transfer->cancelled = true;
        return 1; // makes curl stop with an aborted-by-callback error
    }
    return 0;
}

size_t receive(char* data, size_t size, size_t count, void* context) {
    auto* transfer = static_cast<Transfer*>(context);
    size_t bytes = size * count;
    if (transfer->body->size() + bytes > transfer->maxBytes) {
        transfer->tooLarge = true;
        return 0; // makes curl stop with a write error
    }
    transfer->body->append(data, bytes);
    return bytes;
}

std::string lowerScheme(std::string_view address) {
    auto colon = address.find(':');
    if (colon == std::string_view::npos) return {};
    std::string scheme(address.substr(0, colon));
    for (char& c : scheme)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return scheme;
}

long milliseconds(double seconds) {
    if (!(seconds > 0)) return 1;
    return long(std::min(seconds, 86400.0) * 1000);
}

} // namespace

FetchResult fetch(std::string_view address, const FetchOptions& options) {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });

    FetchResult result;
    result.finalAddress = address;
    std::string scheme = lowerScheme(address);
    if (scheme.empty() || address.find('\0') != std::string_view::npos) {
        result.failure = FetchResult::Failure::BadAddress;
        result.error = "Not an address: " + std::string(address);
        return result;
    }
    if (scheme != "http" && scheme != "https") {
        result.failure = FetchResult::Failure::RefusedScheme;
        result.error = "Refusing to fetch " + scheme + ": addresses";
        return result;
    }

    if (options.wanted && !options.wanted()) {
        result.failure = FetchResult::Failure::Cancelled;
        result.error = "Not wanted any more: " + std::string(address);
        return result;
    }

    CURL* curl = curl_easy_init();
    if (!curl) {
        result.failure = FetchResult::Failure::Network;
        result.error = "Cannot start a transfer";
        return result;
    }
    Transfer transfer{&result.body, options.maxBytes, &options.wanted};
    char errorText[CURL_ERROR_SIZE] = {};
    std::string url(address);
    // Loopback never goes through a proxy, whatever the environment says.
    std::string noProxy = "localhost,127.0.0.1,::1";
    for (const char* name : {"no_proxy", "NO_PROXY"})
        if (const char* value = std::getenv(name); value && *value)
            noProxy = std::string(value) + "," + noProxy;

    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, long(std::max(0, options.maxRedirects)));
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, milliseconds(options.connectTimeout));
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, milliseconds(options.totalTimeout));
    curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, curl_off_t(options.maxBytes));
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L); // timeouts without signals: we run on many threads
    curl_easy_setopt(curl, CURLOPT_NOPROXY, noProxy.c_str());
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, receive);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorText);
    curl_easy_setopt(curl, CURLOPT_USERAGENT, "Morvane/1");
    if (options.wanted) {
        curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, progress);
        curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &transfer);
        curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    }

    CURLcode code = curl_easy_perform(curl);
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &result.status);
    char* effective = nullptr;
    if (curl_easy_getinfo(curl, CURLINFO_EFFECTIVE_URL, &effective) == CURLE_OK && effective)
        result.finalAddress = effective;
    curl_easy_cleanup(curl);

    auto fail = [&](FetchResult::Failure failure, std::string text) {
        result.failure = failure;
        result.error = std::move(text);
        if (failure != FetchResult::Failure::HttpStatus) result.body.clear();
    };
    std::string detail = errorText[0] ? errorText : curl_easy_strerror(code);
    switch (code) {
    case CURLE_OK:
        if (result.status < 200 || result.status > 299)
            fail(FetchResult::Failure::HttpStatus, "The server answered " + std::to_string(result.status));
        break;
    case CURLE_UNSUPPORTED_PROTOCOL:
        fail(FetchResult::Failure::RefusedScheme, "Refused: " + detail);
        break;
    case CURLE_URL_MALFORMAT:
        fail(FetchResult::Failure::BadAddress, "Not an address: " + detail);
        break;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
        fail(FetchResult::Failure::CannotConnect, detail);
        break;
    case CURLE_OPERATION_TIMEDOUT:
        fail(FetchResult::Failure::TimedOut, detail);
        break;
    case CURLE_FILESIZE_EXCEEDED:
        fail(FetchResult::Failure::TooLarge, "More than " + std::to_string(options.maxBytes) + " bytes");
        break;
    case CURLE_ABORTED_BY_CALLBACK:
        if (transfer.cancelled)
            fail(FetchResult::Failure::Cancelled, "Not wanted any more: " + std::string(address));
        else
            fail(FetchResult::Failure::Network, detail);
        break;
    case CURLE_TOO_MANY_REDIRECTS:
        fail(FetchResult::Failure::TooManyRedirects, detail);
        break;
    case CURLE_WRITE_ERROR:
        if (transfer.tooLarge)
            fail(FetchResult::Failure::TooLarge, "More than " + std::to_string(options.maxBytes) + " bytes");
        else
            fail(FetchResult::Failure::Network, detail);
        break;
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        fail(FetchResult::Failure::CannotConnect, detail);
        break;
    default:
        fail(FetchResult::Failure::Network, detail);
        break;
    }
    return result;
}

struct FetchQueue::Pending {
    std::string address;
    FetchOptions options;
    Completion completion;
};

struct FetchQueue::State {
    mutable std::mutex mutex;
    std::deque<Pending> waiting;
    bool laneBusy[kMaxTransfers] = {};
    int running = 0;
};

FetchQueue::FetchQueue() : state_(new State) {}

FetchQueue& FetchQueue::shared() {
    static FetchQueue* instance = new FetchQueue; // never destroyed: lanes may run at exit
    return *instance;
}

void FetchQueue::add(std::string address, FetchOptions options, Completion completion) {
    int lane = -1;
    {
        std::lock_guard lock(state_->mutex);
        state_->waiting.push_back({std::move(address), std::move(options), std::move(completion)});
        if (state_->running == kMaxTransfers) return; // a running lane takes it when it is done
        for (lane = 0; state_->laneBusy[lane]; ++lane) {
        }
        state_->laneBusy[lane] = true;
        ++state_->running;
    }
    // Each lane is a serial queue of its own: its thread may sit in a stalled
    // transfer without holding anything else up, and Queue::waitIdle() sees it.
    Queue::serial("morvane.fetch." + std::to_string(lane)).async([this, lane] { runLane(lane); });
}

void FetchQueue::runLane(int lane) {
    for (;;) {
        Pending next;
        {
            std::lock_guard lock(state_->mutex);
            if (state_->waiting.empty()) {
                // Decided under the same lock that add() checks `running` under,
                // so a transfer added now either sees this lane free or is taken here.
                state_->laneBusy[lane] = false;
                --state_->running;
                return;
            }
            next = std::move(state_->waiting.front());
            state_->waiting.pop_front();
        }
        FetchResult result = fetch(next.address, next.options);
        // A completion that throws must not cost the queue a lane.
        try {
            if (next.completion) next.completion(std::move(result));
        } catch (...) {
            Log::platform("A fetch completion threw: " + next.address);
        }
    }
}

int FetchQueue::running() const {
    std::lock_guard lock(state_->mutex);
    return state_->running;
}

std::size_t FetchQueue::waiting() const {
    std::lock_guard lock(state_->mutex);
    return state_->waiting.size();
}

} // namespace morvane::sys
