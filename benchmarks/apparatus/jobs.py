"""Job files: the job that is measured, behind records of earlier ones."""

import json

from apparatus.world import LOG_ID, WWN


def waiting(command, inputs):
    return {"log_id": LOG_ID, "job_id": command, "state_id": "WAIT", "input_parameters": inputs}


def ended(number):
    """What an earlier firmware job has left: about 550 bytes."""
    entry = {"wwn": f"50000000000{number:05X}", "file_path": "/Users/someone/Downloads/FW_T3.img"}
    progress = {"fw_percentage": 100, "cpld_percentage": 100, "total_percentage": 100}
    return {"log_id": f"earlier-{number}", "job_id": "updateFW", "state_id": "FREE",
            "input_parameters": [entry], "output": [{**entry, **progress}], "result": 0,
            "resultStr": "no error"}


def job_file(records, job):
    """The text of a job file of so many records; the last is the job."""
    return json.dumps([ended(number) for number in range(1, records)] + [job], indent=2)


def firmware():
    return waiting("updateFW", [{"wwn": WWN, "file_path": "/Users/someone/Downloads/FW_T3.img"}])


def download(folder, products):
    return waiting("downloadOnlineUpdateFile",
                   [{"productid": product, "version": "1.0", "url": "https://updates.example/",
                     "folder": str(folder)} for product in products])
