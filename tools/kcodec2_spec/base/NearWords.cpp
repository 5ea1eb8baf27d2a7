// Words that names are made of: which mean the same, and which exist although they look misspelt.

#include "base/NearWords.h"

#include <unordered_map>

#include "base/Text.h"

namespace kc2::tool {

namespace {

// The row of each word.
using Forms = std::unordered_map<std::string_view, std::string_view>;

// Words that mean the same, separated by blanks; the first one stands for all of them. Shortened
// words that are most of the longer one need no row.
constexpr std::string_view kSettingWords[] = {
        "affinity aff affin",
        "alloc allocate allocation allocating allocations",
        "bitrate br birate",
        "buffer buf buff bufs bfr",
        "carveout carve",
        "codec cdc codecs",
        "color colour clr col",
        "complexity complex cplx cmplx complx compl",
        "concurrent conc concur concurrency",
        "control ctrl ctl cntl cntrl",
        "count cnt num number",
        "debug dbg",
        "dec decoder decode decoding decoders decdr vdec",
        "default def dflt deflt dft",
        "downscale downscaling downsize dwnscale",
        "duration dur",
        "enable en enabled enables enbl enb ena enabling on",
        "enc encoder encode encoding encoders encdr venc",
        "event evt ev",
        "extension ext extn xtn",
        "extra xtra ex",
        "factor fac fact fctr",
        "fence fencing fnc",
        "flip flipping",
        "format fmt frmt",
        "fps framerate",
        "frame frm",
        "gen generation generate generating",
        "hier hierarchical hierarchy hierarchic",
        "hw hardware",
        "input in inp ip",
        "layer lyr lay",
        "linear lin",
        "max maximum maximal maxim mxm mx",
        "mb macroblock macroblocks",
        "metadata meta",
        "min minimum minimal minim mnm mn",
        "mode md mod",
        "nonref nonreference",
        "order ord",
        "outbuf outputbuf outputbuffer outbuffer outbuff",
        "output out outp op",
        "perf performance prf",
        "picture pic pict",
        "pipeline pipe pl",
        "preprocess preproc preprocessing prep",
        "private priv pvt prvt prv",
        "protected prot protect protection",
        "rate rt",
        "render rend rendering rendered",
        "resource res rsc rsrc resrc",
        "retry rtry",
        "rotation rot rotate rotating",
        "schedule sched sch scheduling",
        "sec second s",
        "session sess ses",
        "single sngl",
        "size sz",
        "slice slc",
        "smoothness smooth",
        "spatial spat",
        "stat statistic statistics",
        "support supported supp sup supporting",
        "temporal temp tmp",
        "test tst testing",
        "timeout tmo tout",
        "transcode transcoding xcode trans",
        "value val",
        "version ver vers v",
        "video vid",
        "width wd wid w",
};

constexpr std::string_view kComponentWords[] = {
        "av1 av01 aom aomedia aomav1 av1video",
        "avc h264 x264 avc1 h264avc avch264 mpeg4avc avch",
        "c2 codec2 omx",
        "cq cqmode constantquality",
        "decoder dec decode decoders decoding dcdr vdec",
        "encoder enc encode encoders encoding ecdr encdr venc",
        "hdr hdrmode",
        "heic heics",
        "hevc h265 x265 hvc1 hev1 h265hevc hevch265 mpeghhevc mpeg4hevc mpegh",
        "latency lat delay",
        "lowlatency ll lowlat lowdelay",
        "mvhevc mvh265 mvhvc1 hevcmv h265mv",
        "secure sec secured secured drm protected",
        "vp9 vp09",
};

// Words of components that exist although they are one letter from a known component's: formats,
// and hq for high quality.
constexpr std::string_view kOtherFormats[] = {
        "aac avs avs2 evc heif lcevc hq lhevc mvc shevc shvc svc vc1 vvc",
};

// Words that names of settings may have, each a letter or two from one in a known name.
constexpr std::string_view kOtherWords[] = {
        "account actor alpha alt amount any apu area audio avg base bframe block bps bw cache",
        "call camera caption cdr clip code copy cost court cover data date db deblock decrypt deg",
        "del depth det detect dev device disable disabled dp dpu dram dsp du dual encrypt engine",
        "enhance entry export fade fader fast fec fill filter fit fix flag flush fusion gain gap",
        "gate gb gbps get gps gpu grain gpuaffinity hash hd hdr hdr10 header heic height high",
        "hint hold hop iframe image import index infra init insert int inter interval ip ipu isp",
        "kb kbps kbs key last leader let level limit line link list load loader lock log loop low",
        "map mapper mapping mask mbps medium mid mission mix mixed model more motion move mvs",
        "name node noise none npu off online only other pack page part path pattern pen period",
        "permission pframe photo plane play player pool port post power pp prefetch preview",
        "privacy profile prop qpd queue range rank ratio raw rc rd read reader ready real rec",
        "recode ref region reset rest roi route row rx safe sample sampler scale score sdr sector",
        "secure select sender sensor sequence shader share side signal sink site skip sleep slide",
        "slip slot slow smart soft some sort source space special speed split sram start state",
        "static status step stop strict stride sw sync tag task temporary text thread tier tile",
        "time timer tone top total tpu trace track trim tune type unicode unit unload unprotected",
        "unsupported upload upscale usage user valve vector vendor view vision vp vpu vr wait",
        "wake weight window write zone zoom",
};

// Of settings. Each is in several known names, or would be in a vendor's.
constexpr std::string_view kGenericForms[] = {
        "all bitrate buffer control count dec enable enc format max min mode output input perf",
        "rate set size test value version video width support default frame",
};

template <typename Rows>
Forms formsOf(const Rows& rows) {
    Forms forms;
    for (const std::string_view row : rows) {
        for (const std::string_view word : split(row, ' ')) {
            forms.emplace(word, row);
        }
    }
    return forms;
}

const Forms& formsOf(NameKind kind) {
    static const Forms ofSettings = formsOf(kSettingWords);
    static const Forms ofComponents = formsOf(kComponentWords);
    return kind == NameKind::Setting ? ofSettings : ofComponents;
}

std::string_view withoutPlural(std::string_view word) {
    constexpr size_t kShortest = 3;
    const bool isPlural =
            word.size() >= kShortest && word.back() == 's' && word[word.size() - 2] != 's';
    return isPlural ? word.substr(0, word.size() - 1) : word;
}

}  // namespace

std::string_view commonForm(NameKind kind, std::string_view word) {
    const Forms& forms = formsOf(kind);
    auto found = forms.find(word);
    if (found == forms.end()) {
        word = withoutPlural(word);
        found = forms.find(word);
    }
    return found != forms.end() ? found->second.substr(0, found->second.find(' ')) : word;
}

std::string_view wordsLike(NameKind kind, std::string_view form) {
    const auto found = formsOf(kind).find(form);
    return found != formsOf(kind).end() ? found->second : form;
}

bool isWord(NameKind kind, std::string_view word) {
    static const Forms ofSettings = formsOf(kOtherWords);
    static const Forms ofComponents = formsOf(kOtherFormats);
    return (kind == NameKind::Setting ? ofSettings : ofComponents).contains(word);
}

bool isGeneric(std::string_view form) {
    static const Forms generic = formsOf(kGenericForms);
    return generic.contains(form);
}

}  // namespace kc2::tool
