// PulseCapture.cpp -- what the machine plays, as a stream of samples from the sound server
#include "stock/SoundLevelDLL/PulseCapture.h"

#include <pulse/pulseaudio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>

// Everything here but start, stop and description runs on the thread of the library's main loop, whose lock guards
// the record.
struct PulseCapture {
    CaptureSamplesFn pfnSamples;
    void *pUser;
    pa_threaded_mainloop *pLoop;
    pa_mainloop_api *pApi;
    pa_time_event *pTimer; // the next look at the server
    pa_context *pContext;  // null while there is no connection
    pa_stream *pStream;    // null while nothing is captured
    CaptureState eState;
    u32 bTried;           // a connection was tried
    u32 bConnected;       // and one came about at some time
    std::string sMonitor; // name of the source that pStream captures
    std::string sOutput;  // the output's name for people
};

namespace {

constexpr u32 RETRY_MS = 2500;      // between two looks for a server
constexpr u32 REOPEN_MS = 500;      // until a stream that broke is opened anew
constexpr u32 FRAGMENT_MS = 10;     // how often samples come
constexpr u32 BACKLOG_MS = 200;     // older samples are of no use
constexpr u32 CAPTURE_RATE = 48000; // only until the source's own rate is known
constexpr u8 CAPTURE_CHANNELS = 2;

void SetTimer(PulseCapture *pCapture, u32 nDelayMs)
{
    timeval tv;
    pa_timeval_add(pa_gettimeofday(&tv), static_cast<pa_usec_t>(nDelayMs) * 1000);
    pCapture->pApi->time_restart(pCapture->pTimer, &tv);
}

void CloseStream(PulseCapture *pCapture)
{
    if (!pCapture->pStream)
        return;
    pa_stream_set_state_callback(pCapture->pStream, nullptr, nullptr);
    pa_stream_set_moved_callback(pCapture->pStream, nullptr, nullptr);
    pa_stream_set_read_callback(pCapture->pStream, nullptr, nullptr);
    pa_stream_disconnect(pCapture->pStream);
    pa_stream_unref(pCapture->pStream);
    pCapture->pStream = nullptr;
    pCapture->sMonitor.clear();
}

void CloseContext(PulseCapture *pCapture)
{
    CloseStream(pCapture);
    if (!pCapture->pContext)
        return;
    pa_context_set_state_callback(pCapture->pContext, nullptr, nullptr);
    pa_context_set_subscribe_callback(pCapture->pContext, nullptr, nullptr);
    pa_context_disconnect(pCapture->pContext);
    pa_context_unref(pCapture->pContext);
    pCapture->pContext = nullptr;
}

void OnSamples(pa_stream *pStream, size_t, void *pUser)
{
    PulseCapture *pCapture = static_cast<PulseCapture *>(pUser);
    const pa_sample_spec *pSpec = pa_stream_get_sample_spec(pStream);
    const void *pData = nullptr;
    size_t cb = 0;
    while (pa_stream_readable_size(pStream) > 0 && pa_stream_peek(pStream, &pData, &cb) == 0 && cb > 0) {
        // no data with a size is a hole in the stream
        pCapture->pfnSamples(pCapture->pUser, static_cast<const f32 *>(pData),
                             static_cast<u32>(cb / pa_frame_size(pSpec)), pSpec->rate, pSpec->channels);
        pa_stream_drop(pStream);
    }
}

void GiveUpStream(PulseCapture *pCapture, u32 nRetryMs)
{
    CloseStream(pCapture);
    pCapture->eState = CaptureState::NoOutput;
    SetTimer(pCapture, nRetryMs);
}

// A server that gave another source than the one asked for, or moved the stream, may have given the microphone.
void CheckSource(pa_stream *pStream, void *pUser)
{
    PulseCapture *pCapture = static_cast<PulseCapture *>(pUser);
    const char *pszDevice = pa_stream_get_device_name(pStream);
    if (!pszDevice || pCapture->sMonitor != pszDevice)
        GiveUpStream(pCapture, RETRY_MS);
}

void OnStreamState(pa_stream *pStream, void *pUser)
{
    const pa_stream_state_t eState = pa_stream_get_state(pStream);
    if (eState == PA_STREAM_READY)
        CheckSource(pStream, pUser);
    else if (!PA_STREAM_IS_GOOD(eState))
        GiveUpStream(static_cast<PulseCapture *>(pUser), REOPEN_MS);
}

pa_buffer_attr CaptureBuffer(const pa_sample_spec *pSpec)
{
    pa_buffer_attr attr;
    std::memset(&attr, 0xFF, sizeof attr); // all bits set: the server chooses
    attr.fragsize = static_cast<u32>(pa_usec_to_bytes(FRAGMENT_MS * 1000, pSpec));
    attr.maxlength = static_cast<u32>(pa_usec_to_bytes(BACKLOG_MS * 1000, pSpec));
    return attr;
}

// The source is named and the stream stays on it: with its output gone it ends, instead of being moved to another
// source, which could be a microphone. An output that nobody uses may still be suspended.
u32 ConnectStream(PulseCapture *pCapture, const pa_sample_spec *pSpec)
{
    constexpr int nFlags =
        PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE | PA_STREAM_FIX_RATE | PA_STREAM_DONT_INHIBIT_AUTO_SUSPEND;
    const pa_buffer_attr attr = CaptureBuffer(pSpec);
    return pa_stream_connect_record(pCapture->pStream, pCapture->sMonitor.c_str(), &attr,
                                    static_cast<pa_stream_flags_t>(nFlags)) == 0;
}

void OpenStream(PulseCapture *pCapture, const char *pszMonitor, const char *pszOutput)
{
    CloseStream(pCapture);
    const pa_sample_spec sample = {PA_SAMPLE_FLOAT32NE, CAPTURE_RATE, CAPTURE_CHANNELS};
    pCapture->pStream = pa_stream_new(pCapture->pContext, "Sound level", &sample, nullptr);
    if (!pCapture->pStream) {
        SetTimer(pCapture, RETRY_MS);
        return;
    }
    pCapture->sMonitor = pszMonitor;
    pCapture->sOutput = pszOutput;
    pCapture->eState = CaptureState::Listening;
    pa_stream_set_state_callback(pCapture->pStream, OnStreamState, pCapture);
    pa_stream_set_moved_callback(pCapture->pStream, CheckSource, pCapture);
    pa_stream_set_read_callback(pCapture->pStream, OnSamples, pCapture);
    if (!ConnectStream(pCapture, &sample))
        GiveUpStream(pCapture, RETRY_MS);
}

void OnDefaultOutput(pa_context *, const pa_sink_info *pInfo, int nEnd, void *pUser)
{
    PulseCapture *pCapture = static_cast<PulseCapture *>(pUser);
    if (nEnd == 0 && pInfo && pInfo->monitor_source_name) {
        if (pCapture->sMonitor != pInfo->monitor_source_name)
            OpenStream(pCapture, pInfo->monitor_source_name, pInfo->description ? pInfo->description : pInfo->name);
    } else if (nEnd < 0) {
        CloseStream(pCapture);
        pCapture->eState = CaptureState::NoOutput;
    }
}

void AskForDefaultOutput(PulseCapture *pCapture)
{
    pa_operation *pOp =
        pa_context_get_sink_info_by_name(pCapture->pContext, "@DEFAULT_SINK@", OnDefaultOutput, pCapture);
    if (pOp)
        pa_operation_unref(pOp);
}

void OnServerChange(pa_context *, pa_subscription_event_type_t eEvent, u32, void *pUser)
{
    const int nFacility = eEvent & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
    const int nKind = eEvent & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
    // a sink changes with every turn of a volume knob
    if (nFacility == PA_SUBSCRIPTION_EVENT_SINK && nKind == PA_SUBSCRIPTION_EVENT_CHANGE)
        return;
    AskForDefaultOutput(static_cast<PulseCapture *>(pUser));
}

void WatchServer(PulseCapture *pCapture)
{
    constexpr int nMask = PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SINK;
    pa_context_set_subscribe_callback(pCapture->pContext, OnServerChange, pCapture);
    pa_operation *pOp =
        pa_context_subscribe(pCapture->pContext, static_cast<pa_subscription_mask_t>(nMask), nullptr, nullptr);
    if (pOp)
        pa_operation_unref(pOp);
    AskForDefaultOutput(pCapture);
}

void OnContextState(pa_context *pContext, void *pUser)
{
    PulseCapture *pCapture = static_cast<PulseCapture *>(pUser);
    const pa_context_state_t eState = pa_context_get_state(pContext);
    if (eState == PA_CONTEXT_READY) {
        pCapture->bConnected = 1;
        WatchServer(pCapture);
    } else if (!PA_CONTEXT_IS_GOOD(eState)) {
        pCapture->eState = CaptureState::NoServer;
        SetTimer(pCapture, RETRY_MS);
    }
}

// Where the client library would look for the server's socket by itself.
std::string RuntimeFolder()
{
    for (const char *pszName : {"PULSE_RUNTIME_PATH", "XDG_RUNTIME_DIR", "HOME"})
        if (const char *pszFolder = std::getenv(pszName))
            return pszFolder;
    return {};
}

// The client library writes a line on standard error at every try when its folder is missing or somebody else's.
u32 CanTryQuietly(const PulseCapture *pCapture)
{
    if (!pCapture->bTried || pCapture->bConnected || std::getenv("PULSE_SERVER"))
        return 1;
    const std::string sFolder = RuntimeFolder();
    struct stat st;
    return stat(sFolder.c_str(), &st) == 0 && st.st_uid == getuid() && access(sFolder.c_str(), W_OK) == 0;
}

void ConnectContext(PulseCapture *pCapture)
{
    CloseContext(pCapture);
    if (!CanTryQuietly(pCapture)) {
        SetTimer(pCapture, RETRY_MS);
        return;
    }
    pCapture->bTried = 1;
    pCapture->pContext = pa_context_new(pCapture->pApi, "Vorticade");
    if (pCapture->pContext) {
        pa_context_set_state_callback(pCapture->pContext, OnContextState, pCapture);
        if (pa_context_connect(pCapture->pContext, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) == 0)
            return;
    }
    pCapture->eState = CaptureState::NoServer;
    SetTimer(pCapture, RETRY_MS);
}

void OnTimer(pa_mainloop_api *, pa_time_event *, const timeval *, void *pUser)
{
    PulseCapture *pCapture = static_cast<PulseCapture *>(pUser);
    if (pCapture->pContext && pa_context_get_state(pCapture->pContext) == PA_CONTEXT_READY)
        AskForDefaultOutput(pCapture);
    else
        ConnectContext(pCapture);
}

// The first connection is made by the timer, on the loop's own thread: even reading the client's settings takes time.
u32 StartLoop(PulseCapture *pCapture)
{
    pCapture->pLoop = pa_threaded_mainloop_new();
    if (!pCapture->pLoop)
        return 0;
    pa_threaded_mainloop_set_name(pCapture->pLoop, "vd-sound");
    pCapture->pApi = pa_threaded_mainloop_get_api(pCapture->pLoop);
    timeval tv;
    pCapture->pTimer = pCapture->pApi->time_new(pCapture->pApi, pa_gettimeofday(&tv), OnTimer, pCapture);
    return pCapture->pTimer && pa_threaded_mainloop_start(pCapture->pLoop) == 0;
}

} // namespace

PulseCapture *StartPulseCapture(CaptureSamplesFn pfnSamples, void *pUser)
{
    PulseCapture *pCapture = new (std::nothrow) PulseCapture{};
    if (!pCapture)
        return nullptr;
    pCapture->pfnSamples = pfnSamples;
    pCapture->pUser = pUser;
    if (StartLoop(pCapture))
        return pCapture;
    StopPulseCapture(pCapture);
    return nullptr;
}

void StopPulseCapture(PulseCapture *pCapture)
{
    if (!pCapture)
        return;
    if (pCapture->pLoop) {
        pa_threaded_mainloop_lock(pCapture->pLoop);
        CloseContext(pCapture);
        if (pCapture->pTimer)
            pCapture->pApi->time_free(pCapture->pTimer);
        pCapture->pTimer = nullptr;
        pa_threaded_mainloop_unlock(pCapture->pLoop);
        pa_threaded_mainloop_stop(pCapture->pLoop);
        pa_threaded_mainloop_free(pCapture->pLoop);
    }
    delete pCapture;
}

CaptureState DescribePulseCapture(PulseCapture *pCapture, std::string *psSource)
{
    pa_threaded_mainloop_lock(pCapture->pLoop);
    const CaptureState eState = pCapture->eState;
    if (eState == CaptureState::Listening)
        *psSource = "the monitor of \"" + pCapture->sOutput + "\" (" + pCapture->sMonitor + ")";
    else if (eState == CaptureState::NoOutput)
        *psSource = "nothing: the sound server has no output that can be listened to";
    else if (eState == CaptureState::NoServer)
        *psSource = "nothing: no sound server answers";
    else
        *psSource = "nothing yet: waiting for the sound server";
    pa_threaded_mainloop_unlock(pCapture->pLoop);
    return eState;
}
