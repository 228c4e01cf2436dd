// A synchronous AT command round trip through nkw_pal_at_send against a
// direct mipc_sys_at_sync on the same answer of the simulated modem, in one
// run, with the log level at warnings so that success lines are filtered.
// The ratio at_send / direct is the channel's own cost.
#include <benchmark/benchmark.h>

#include <cstring>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "nkw_pal.h"

namespace {

constexpr char kCommand[] = "AT+CSQ";
constexpr char kAnswer[] = "+CSQ: 20,99\r\nOK";
// The simulated modem journals every call: clear it now and then so that the
// journal's growth is not part of the figure (both variants pay the same).
constexpr int kJournalBatch = 4096;

void set_up() {
    nkw_pal_log_set_level(NKW_PAL_LOG_WARN);
    mipc_sim::reset();
    mipc_sim::set_at_reply(kCommand, 0, kAnswer);
}

void AtSync_Direct(benchmark::State &state) {
    set_up();
    int sent = 0;
    for (auto _ : state) {
        mipc_sys_at_struct result;
        std::memset(&result, 0, sizeof result);
        benchmark::DoNotOptimize(mipc_sys_at_sync(MIPC_PS_ALL, &result, kCommand));
        benchmark::DoNotOptimize(result.atcmd_res_ptr[0]);
        if (++sent % kJournalBatch == 0) mipc_sim::clear_journal();
    }
}

void AtSync_AtSend(benchmark::State &state) {
    set_up();
    int sent = 0;
    char response[64];
    uint32_t length = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            nkw_pal_at_send(kCommand, sizeof kCommand - 1, response, sizeof response, &length));
        benchmark::DoNotOptimize(response[0]);
        if (++sent % kJournalBatch == 0) mipc_sim::clear_journal();
    }
    if (length != sizeof kAnswer - 1) state.SkipWithError("unexpected answer");
}

BENCHMARK(AtSync_Direct);
BENCHMARK(AtSync_AtSend);

}  // namespace

BENCHMARK_MAIN();
