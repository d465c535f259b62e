// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/BandDocs.h"

#include "Tests/Audio/CGraphRig.h"

namespace qrb {

namespace {

std::string arrayXml(const std::string& name, const std::vector<std::string>& designers)
{
    std::string xml = "<audio:fltgen-array name='" + name + "'>";
    for (std::size_t i = 0; i < designers.size(); ++i)
        xml += "<audio:fltgen-array-item name='i" + std::to_string(i) + "' fltgen='audio.flt." + designers[i] +
               "' index='" + std::to_string(i) + "'/>";
    return xml + "</audio:fltgen-array>";
}

std::string serialXml(const std::string& name, const std::string& designer)
{
    const std::string item = "<audio:fltgen-serial-item name='i' fltgen='audio.flt." + designer + "'/>";
    return "<audio:fltgen-serial name='" + name + "'>" + item + item + "</audio:fltgen-serial>";
}

std::string prototypeXml(const std::string& name, const std::string& list, const std::string& attrs,
                         const std::string& filters)
{
    return "<audio:modProcessSwitch name='" + name + "' is-prototype='true' def-child-name='mod' process-list='" +
           list + "' " + attrs +
           "><audio:param-alloc name='index' index='0' param-name='index'/>"
           "<audio:param-alloc name='count' index='1' param-name='count'/>" +
           filters + "</audio:modProcessSwitch>";
}

} // namespace

std::string crossoverDesignersXml()
{
    return "<core:object name='flt'><audio:fltgen-bypass name='bypass'/><audio:fltgen-lphp1 name='lp1'/>"
           "<audio:fltgen-lphp1 name='hp1' type='1'/><audio:fltgen-rbj name='lp2_rbj_q' is-q='true'/>"
           "<audio:fltgen-rbj name='hp2_rbj_q' type='1' is-q='true'/>"
           "<audio:fltgen-rbj name='hp2_rbj_qi' type='1' is-q='true' is-inverted='true'/>"
           "<audio:fltgen-rbj name='ap_rbj_q' type='5' is-q='true'/>"
           "<audio:fltgen-rbj name='ap3_rbj_q' type='10' is-q='true'/>" +
           serialXml("lp4_lr", "lp2_rbj_q") + serialXml("hp4_lr", "hp2_rbj_q") +
           "</core:object><core:object name='fltarray'>" + arrayXml("lp1", {"bypass", "lp1"}) +
           arrayXml("hp1", {"bypass", "hp1"}) + arrayXml("lriley12", {"lp2_rbj_q", "hp2_rbj_qi"}) +
           arrayXml("lriley", {"lp4_lr", "hp4_lr"}) + arrayXml("lriley_allpass", {"ap_rbj_q", "ap3_rbj_q"}) +
           "</core:object>";
}

std::string frequencyXml(const std::string& defaults)
{
    return "<audio:param name='freq' element-size='1' converter='audio.paramcvt.real' min-values='0' "
           "max-values='1000000' is-global='true' def-values='" +
           defaults + "'/>";
}

std::string filterXml(const std::string& name, const std::string& array, int index, const std::string& bw)
{
    return "<audio:modFilterIIR name='" + name + "' xfade-length='0.015' gen-array='audio.fltarray." + array + "'>" +
           paramXml("index", std::to_string(index), "") + paramXml("bw", bw, "") +
           "<audio:param-alloc name='index' index='0' param-name='index' is-smooth-update='true'/>"
           "<audio:param-alloc name='freq' index='1' param-name='freq'/>"
           "<audio:param-alloc name='bw' index='2' param-name='bw'/></audio:modFilterIIR>";
}

std::string crossoverPrototypesXml()
{
    const std::string three = "0:.flt0;1:.flt1;2:.flt2";
    return prototypeXml("protLP", three, "",
                        filterXml("flt0", "lp1", 1) + filterXml("flt1", "lriley12", 0, "0.5") +
                            filterXml("flt2", "lriley", 0, "0.7071")) +
           prototypeXml("protHP", three, "",
                        filterXml("flt0", "hp1", 1) + filterXml("flt1", "lriley12", 1, "0.5") +
                            filterXml("flt2", "lriley", 1, "0.7071")) +
           prototypeXml("protAP", "1:.flt1;2:.flt2", "is-allpass-bank='true'",
                        filterXml("flt1", "lriley_allpass", 1, "0.5") +
                            filterXml("flt2", "lriley_allpass", 0, "0.7071")) +
           "<audio:param-remap name='splits'><content value='pre.mod.freq=freq;lp.mod.freq=freq;hp.mod.freq=freq;"
           "pre.index=type;lp.index=type;hp.index=type;pre.count=xo-count'/></audio:param-remap>";
}

} // namespace qrb
