#!/usr/bin/env bash
# The metrics of the emulated adapters, as those meet them who read them: promtool, node_exporter's
# textfile collector, a Prometheus that scrapes it and answers a query; and the alert rules, the
# dashboard and the scheduled task of packaging/monitoring.
source "$(dirname "$0")/common.sh"

scripts/setup.sh --monitoring
scripts/build.sh vxmgr vxemu

# Ports that nothing else uses; a machine that runs two of these tests gives others.
exporter_port=${VXMGMT_EXPORTER_PORT:-39100}
prometheus_port=${VXMGMT_PROMETHEUS_PORT:-39090}
work=$root/build/monitoring
packaged=$root/packaging/monitoring
rm -rf "$work"
mkdir -p "$work/textfile"

servers=()
clean_up() {
    for server in "${servers[@]}"; do
        kill "$server" 2>/dev/null || true
        wait "$server" 2>/dev/null || true
    done
    run vxemu.exe stop >/dev/null 2>&1 || true
    wine_stop
}
trap clean_up EXIT

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# poll SECONDS COMMAND...: until it succeeds.
poll() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$deadline" ] || return 1
        sleep 0.5
    done
}

# query EXPRESSION: the value of the only sample of the answer.
query() {
    curl -fsG --max-time 5 "http://127.0.0.1:$prometheus_port/api/v1/query" \
        --data-urlencode "query=$1" |
        python3 -c 'import json, sys; r = json.load(sys.stdin)["data"]["result"]; print(r[0]["value"][1]) if len(r) == 1 else sys.exit(1)'
}

# answers EXPRESSION VALUE
answers() {
    [ "$(query "$1" 2>/dev/null)" = "$2" ]
}

echo "Alert rules"
promtool check rules "$packaged/fibrechannel.rules.yml"
(cd "$packaged" && promtool test rules fibrechannel.rules_test.yml)

echo "Metrics of the emulated adapters"
wine_start
run vxemu.exe start --fresh --profile lab >"$work/start.txt" </dev/null
# Texts that would leave their label, if they could.
run vxemu.exe adapter set 6 'model=a\b} 1{"' >/dev/null </dev/null
run vxemu.exe stats bump 3 invalid_crcs 5 >/dev/null </dev/null
run vxemu.exe fault add scsi:4 --do hang 60000 >/dev/null </dev/null
prom=build/monitoring/textfile/fibrechannel.prom
run vxmgr.exe metrics --timeout 1 --out "$prom" </dev/null
run vxemu.exe fault clear >/dev/null </dev/null
run vxmgr.exe metrics --format openmetrics </dev/null >"$work/openmetrics.txt"
promtool check metrics <"$prom"
[ "$(tail -n 1 "$prom")" = "# EOF" ] || fail "the file does not end with # EOF"
# A parser that takes the standard at its word; it belongs to the Python of the system.
/usr/bin/python3 - "$work/openmetrics.txt" <<'PYTHON'
import sys
from prometheus_client.openmetrics.parser import text_string_to_metric_families as parse
families = list(parse(open(sys.argv[1]).read()))
samples = sum(len(family.samples) for family in families)
assert len(families) > 100 and samples > 500, (len(families), samples)
print(f"OpenMetrics: {len(families)} families, {samples} samples")
PYTHON

echo "The dashboard and the scheduled task"
python3 - "$packaged" "$prom" <<'PYTHON'
import json, re, sys, xml.etree.ElementTree as xml
folder, prom = sys.argv[1:]
known = set(re.findall(r"^(fibrechannel_\w+)", open(prom).read(), re.M))
texts = {"grafana-dashboard.json": " ".join(t["expr"] for p in json.load(open(folder + "/grafana-dashboard.json"))["panels"] for t in p["targets"]),
         "fibrechannel.rules.yml": open(folder + "/fibrechannel.rules.yml").read()}
for name, text in texts.items():
    used = set(re.findall(r"fibrechannel_\w+", text))
    assert used and used <= known, (name, used - known)
task = xml.parse(folder + "/vxmgr-metrics.xml").getroot()
space = {"t": "http://schemas.microsoft.com/windows/2004/02/mit/task"}
assert task.findtext("t:Actions/t:Exec/t:Arguments", "", space).startswith("metrics ")
print("every metric that they name is there")
PYTHON

echo "node_exporter and Prometheus"
cat >"$work/prometheus.yml" <<YAML
global: {scrape_interval: 1s, evaluation_interval: 1s}
rule_files: [$packaged/fibrechannel.rules.yml]
scrape_configs:
  - job_name: hosts
    static_configs: [{targets: ["127.0.0.1:$exporter_port"]}]
YAML
prometheus-node-exporter --collector.disable-defaults --collector.textfile \
    --collector.textfile.directory="$work/textfile" --web.listen-address="127.0.0.1:$exporter_port" \
    >"$work/exporter.txt" 2>&1 &
servers+=($!)
prometheus --config.file="$work/prometheus.yml" --storage.tsdb.path="$work/data" \
    --web.listen-address="127.0.0.1:$prometheus_port" >"$work/prometheus.txt" 2>&1 &
servers+=($!)
poll 60 answers 'sum(fibrechannel_up)' 3 || fail "no answer from Prometheus: see $work/*.txt"
answers 'fibrechannel_up{scsi_port="4"}' 0 || fail "the silent port"
answers 'fibrechannel_invalid_crc_total{port_wwn="210002454d000100"}' 5 || fail "the counter"
answers 'fibrechannel_info{model="a\\b} 1{\""}' 1 || fail "the escaped label"
answers 'fibrechannel_health_check_state{check="link_errors",scsi_port="3"}' 1 || fail "the check"
answers 'node_textfile_scrape_error' 0 || fail "the collector could not read the file"
poll 30 answers 'count(ALERTS{alertname="FibreChannelPortSilent"})' 1 || fail "the alert"
echo "Metrics, rules, dashboard and task passed."
