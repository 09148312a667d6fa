/// The sound does not depend on how the host cuts time.

#include "conformance/instrument.h"
#include "probe/signal.h"

namespace {

using Blocks = Row;

constexpr long nb_frames = 96000;

/// Its 120 comes with the only note that sounds: any other would end up to 64 frames early, where
/// the host's blocks cut it.
const score manual_alone{
    note_on(5, 60),      note_on(700, 64),    note_on(701, 67),    note_off(9000, 64),
    note_on(9100, 64),   note_on(20011, 36),  note_off(30000, 60), note_off(30001, 67),
    note_on(47999, 72),  note_off(60000, 36), note_on(60000, 48),  note_off(80000, 72),
    note_off(80000, 48), note_off(81003, 64), note_on(86011, 60),  controller(86011, 120, 0),
    note_on(88000, 55)};

/// Far enough apart for the bass's filter to settle, see bass_within_64_frames.
const score bass_keys{note_on(1000, 31),   note_on(20000, 26),  note_on(40000, 33),
                      note_off(60000, 26), note_off(80000, 33), note_off(80000, 31)};

const score whole{note_on(5, 60),      note_on(700, 31),    note_on(1500, 64),
                  note_on(20000, 26),  note_off(30000, 60), note_on(40000, 24),
                  note_off(60000, 26), note_off(60001, 24), controller(75011, 120, 0),
                  note_on(76000, 57),  note_on(76000, 31),  note_off(80000, 31)};

recording play(trial& running, const score& played, const std::vector<int>& blocks,
               const std::vector<std::pair<VstInt32, float>>& parameters) {
    instrument playing(running, {.blocks = blocks, .parameters = parameters});
    recording sound = playing.render(played, nb_frames);
    running.expect(peak(sound.right) > 1e-3, "it is silent");
    return sound;
}

std::string lengths_text(const std::vector<int>& blocks) {
    std::string text;
    for (const int length : blocks)
        text += (text.empty() ? "" : ", ") + std::to_string(length);
    return text;
}

const std::vector<std::vector<int>> multiples{{128},  {192},  {256},   {512},
                                              {1024}, {4096}, {65536}, {64, 640, 128}};

const std::vector<std::vector<int>> others{
    {1},   {2},    {7},    {63},    {65},
    {100}, {127},  {441},  {480},   {513},
    {999}, {1023}, {3000}, {48000}, {1, 64, 333, 7, 1000, 50}};

void expect_same(trial& running, const std::vector<int>& blocks, signal_span got,
                 signal_span wanted, std::size_t start, double bound_db) {
    const double db = difference_db(got, wanted);
    running.frame = static_cast<long>(start + worst_index(got, wanted));
    running.expect(db <= bound_db, "blocks of " + lengths_text(blocks) + " differ by "
                                       + std::to_string(db) + " dB of the peak");
}

TEST_F(Blocks, MultiplesOf64AreAlikeToTheBit) {
    for (const float vibrato_on : {0.0f, 1.0f}) {
        const recording wanted = play(running, whole, {64}, {{vibrato, vibrato_on}});
        for (const std::vector<int>& blocks : multiples) {
            const recording got = play(running, whole, blocks, {{vibrato, vibrato_on}});
            expect_same(running, blocks, got.right, wanted.right, 0, equal_db);
            expect_same(running, blocks, got.left, wanted.left, 0, equal_db);
        }
    }
}

TEST_F(Blocks, AnyLengthsLeaveTheManualAsItIs) {
    for (const float vibrato_on : {0.0f, 1.0f}) {
        const recording wanted = play(running, manual_alone, {64}, {{vibrato, vibrato_on}});
        for (const std::vector<int>& blocks : others) {
            const recording got = play(running, manual_alone, blocks, {{vibrato, vibrato_on}});
            expect_same(running, blocks, got.right, wanted.right, 0, -75);
        }
    }
}

/// What changes at an edge may do so up to 64 frames earlier or later; 0.1 s later even the filter
/// has forgotten it.
TEST_F(Blocks, AnyLengthsMoveTheBassByLessThan64Frames) {
    const std::vector<std::pair<VstInt32, float>> apart{{bass_chords, 0.0f}};
    const recording wanted = play(running, bass_keys, {64}, apart);
    for (const std::vector<int>& blocks : others) {
        const recording got = play(running, bass_keys, blocks, apart);
        for (std::size_t i = 0; i < bass_keys.size(); ++i) {
            const auto start = static_cast<std::size_t>(bass_keys[i].frame + 4800);
            const bool is_last = i + 1 == bass_keys.size();
            const auto end =
                static_cast<std::size_t>(is_last ? nb_frames : bass_keys[i + 1].frame - 64);
            if (end <= start)
                continue;
            const auto part = [&](const recording& sound) {
                return signal_span(sound.right).subspan(start, end - start);
            };
            if (peak(part(wanted)) > 1e-4 * peak(wanted.right))
                expect_same(running, blocks, part(got), part(wanted), start, -75);
            else
                running.expect(peak(part(got)) <= 1e-4 * peak(wanted.right),
                               "the bass sounds on in blocks of " + lengths_text(blocks));
        }
    }
}

} // namespace
