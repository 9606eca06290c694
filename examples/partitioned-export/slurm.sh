#!/bin/sh
# One task of a job array exports one part: sbatch --array=1-1000%50 slurm.sh
#SBATCH --job-name=sale
#SBATCH --output=parts/slurm-%a.log
exec ./part.sh "$SLURM_ARRAY_TASK_ID"
