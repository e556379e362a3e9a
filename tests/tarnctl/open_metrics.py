"""Reads OpenMetrics from standard input with the strict parser of the format's authors, and prints it in a canonical form:

    family wifi_station_signal_dbm gauge dbm
    wifi_station_signal_dbm device="wifi0" station="0" -48.0

Needs the interpreter for which Debian packages the parser.
"""
import json
import sys

from prometheus_client.openmetrics.parser import text_fd_to_metric_families

sys.stdin.reconfigure(newline="\n")
for family in text_fd_to_metric_families(sys.stdin):
    print("family", family.name, family.type, family.unit)
    assert family.documentation and family.samples, family.name
    for sample in family.samples:
        labels = [f"{name}={json.dumps(value, ensure_ascii=False)}" for name, value in sorted(sample.labels.items())]
        print(sample.name, *labels, float(sample.value))
