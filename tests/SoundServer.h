// SoundServer.h -- a sound server of the test's own, with outputs that nobody hears
#pragma once

#include "platform/BaseTypes.h"
#include "tests/TempFolder.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

// How long a test looks for something that must happen, on a machine that is busy with other things.
constexpr u32 PATIENCE_MS = 30000;

// True once the condition holds; false when the patience is at its end.
template <typename Fn> bool Eventually(Fn condition)
{
    for (u32 nMs = 0; nMs < PATIENCE_MS; nMs += 20) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return condition();
}

// A program that ends with the test.
class Helper {
  public:
    Helper() = default;
    explicit Helper(const std::vector<std::string> &asArgument) : nPid(Start(asArgument))
    {
    }
    Helper(const Helper &) = delete;
    Helper &operator=(const Helper &) = delete;
    ~Helper()
    {
        End();
    }

    void Restart(const std::vector<std::string> &asArgument)
    {
        End();
        nPid = Start(asArgument);
    }

    void End()
    {
        if (nPid <= 0)
            return;
        kill(nPid, SIGKILL);
        waitpid(nPid, nullptr, 0);
        nPid = 0;
    }

    // Waits for the end and tells the exit status.
    int Finish()
    {
        int nStatus = -1;
        if (nPid > 0)
            waitpid(nPid, &nStatus, 0);
        nPid = 0;
        return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    }

  private:
    static pid_t Start(const std::vector<std::string> &asArgument)
    {
        std::vector<char *> apsz;
        for (const std::string &s : asArgument)
            apsz.push_back(const_cast<char *>(s.c_str()));
        apsz.push_back(nullptr);
        const pid_t nChild = fork();
        if (nChild != 0)
            return nChild;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execvp(apsz[0], apsz.data());
        _exit(127);
    }

    pid_t nPid = 0;
};

// Points this process and its helpers at a server in a folder of its own, which runs after StartServer.
class SoundServer {
  public:
    explicit SoundServer(const std::string &sName) : folder(sName)
    {
        setenv("PULSE_SERVER", ("unix:" + Socket()).c_str(), 1);
        setenv("HOME", folder.string().c_str(), 1);
        setenv("XDG_RUNTIME_DIR", folder.string().c_str(), 1);
        setenv("XDG_CONFIG_HOME", folder.string().c_str(), 1);
        unsetenv("PULSE_COOKIE");
    }

    ~SoundServer()
    {
        player.End();
        server.End();
    }

    static bool IsInstalled()
    {
        return Helper({"sh", "-c", "command -v pulseaudio pacat pactl >/dev/null"}).Finish() == 0;
    }

    std::string Socket() const
    {
        return (folder / "native").string();
    }

    // Outputs "a" and "b"; "a" is the default one. False when the server does not come up.
    bool StartServer()
    {
        std::filesystem::remove(Socket());
        server.Restart({SOURCE_FOLDER "/scripts/sound-daemon", folder.string(), "a", "b"});
        return Eventually([this] { return Control({"set-default-sink", "a"}); });
    }

    void StopServer()
    {
        server.End();
    }

    // pactl with these arguments. True if it succeeded.
    bool Control(std::vector<std::string> asArgument)
    {
        asArgument.insert(asArgument.begin(), {"timeout", "10", "pactl"});
        return Quietly(asArgument) == 0;
    }

    // A command line of the shell.
    bool Shell(const std::string &sCommand)
    {
        return Quietly({"timeout", "10", "sh", "-c", sCommand}) == 0;
    }

    // A minute of a tone at the output, until StopTone.
    void PlayTone(const std::string &sOutput, double fAmplitude)
    {
        const std::string sFile = (folder / "tone.raw").string();
        WriteTone(sFile, fAmplitude);
        player.Restart({"pacat", "--playback", "--raw", "--device=" + sOutput, "--format=float32le", "--rate=48000",
                        "--channels=2", sFile});
    }

    void StopTone()
    {
        player.End();
    }

  private:
    static int Quietly(const std::vector<std::string> &asArgument)
    {
        std::vector<std::string> as = {"sh", "-c", "exec \"$@\" >/dev/null 2>&1", "sh"};
        as.insert(as.end(), asArgument.begin(), asArgument.end());
        return Helper(as).Finish();
    }

    static void WriteTone(const std::string &sFile, double fAmplitude)
    {
        std::vector<f32> af(2 * 48000 * 60);
        for (size_t i = 0; i < af.size(); i++)
            af[i] = static_cast<f32>(fAmplitude *
                                     std::sin(2 * 3.14159265358979 * 1000 * static_cast<double>(i / 2) / 48000));
        std::ofstream(sFile, std::ios::binary)
            .write(reinterpret_cast<const char *>(af.data()), static_cast<std::streamsize>(af.size() * sizeof(f32)));
    }

    TempFolder folder;
    Helper server, player;
};
